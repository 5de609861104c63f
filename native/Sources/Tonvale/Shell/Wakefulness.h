// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

#include <memory>

namespace tonvale {

class AudioTransposeModel;
class SleepInhibition;

/// Keeps the computer awake while a song plays or is being saved, and at no other time.
/// @thread CONTROL
class Wakefulness : public QObject {
public:
    /// @param model  outlives it
    explicit Wakefulness(const AudioTransposeModel& model);
    ~Wakefulness() override;

private:
    void follow();

    const AudioTransposeModel& model_;
    std::unique_ptr<SleepInhibition> inhibition_;
};

}  // namespace tonvale
