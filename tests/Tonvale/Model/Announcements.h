// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Tonvale/Model/AudioTransposeModel.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tonvale::test {

/// Every published property of a model as text, by its name.
using Snapshot = std::map<std::string, std::string>;
[[nodiscard]] Snapshot snapshotOf(const AudioTransposeModel& model);

/// What a model tells its observers, and what they can read at that moment.
///
/// A store is written down as "name = value"; one that changes nothing as "same", since nobody can
/// see from outside what was stored. A change that was not announced before, or not told of after,
/// is a failure at once.
class Announcements {
public:
    using List = std::vector<std::string>;

    explicit Announcements(AudioTransposeModel& model);
    ~Announcements();
    Announcements(const Announcements&) = delete;
    Announcements& operator=(const Announcements&) = delete;

    /// Puts `probe()` behind each entry from now on, asked when the store is announced.
    void setProbe(std::function<std::string()> probe) { probe_ = std::move(probe); }

    /// What was written down since the last time.
    [[nodiscard]] List take();

private:
    void willChange();
    void didChange();
    void expectUnchanged(const char* when) const;

    AudioTransposeModel& model_;
    std::function<std::string()> probe_ = [] { return std::string(); };
    Snapshot latest_;
    std::string probed_;
    bool isAnnounced_ = false;
    List list_;
    std::vector<QMetaObject::Connection> connections_;
};

}  // namespace tonvale::test
