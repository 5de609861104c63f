// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>

namespace tonvale::test {

/// While it exists, the time of day is ahead of what it was, for this program and its libraries, as
/// after a clock was set or a computer slept. Only in programs that WallClock.cpp is a part of.
class WallClockJump {
public:
    explicit WallClockJump(std::chrono::seconds length) noexcept;
    ~WallClockJump();
    WallClockJump(const WallClockJump&) = delete;
    WallClockJump& operator=(const WallClockJump&) = delete;
};

}  // namespace tonvale::test
