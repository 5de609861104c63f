// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Output/AudioOutput.h"

namespace tonvale {

/// The desktop's sound server, PulseAudio or what speaks its language.
class PulseAudioOutput final : public AudioOutput {
public:
    void start(AudioOutputSource& source) override;
    [[nodiscard]] bool isRunning() const noexcept override { return false; }
    [[nodiscard]] AudioFormat format() const noexcept override { return {}; }
    void discardQueued() noexcept override {}
    void framesReady() noexcept override {}
    [[nodiscard]] std::uint64_t underrunCount() const noexcept override { return 0; }
    void setTitle(std::string_view /*title*/) override {}
};

}  // namespace tonvale
