// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Foundation/Clock.h"

#include <chrono>

namespace tonvale::test {

/// A clock that stands still, in place of the real one as long as this lives.
class FakeClock {
public:
    FakeClock()
    {
        now_ = Clock::Instant(std::chrono::hours(1));
        Clock::replace([] { return now_; });
    }
    ~FakeClock() { Clock::replace(nullptr); }
    FakeClock(const FakeClock&) = delete;
    FakeClock& operator=(const FakeClock&) = delete;

    static void advance(double seconds)
    {
        now_ += std::chrono::duration_cast<Clock::Instant::duration>(
            std::chrono::duration<double>(seconds));
    }

private:
    static inline Clock::Instant now_;
};

}  // namespace tonvale::test
