// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/WallClock.h"

#include <sys/time.h>
#include <time.h>

#include <atomic>

namespace {

std::atomic<time_t> secondsAhead = 0;

}  // namespace

namespace tonvale::test {

WallClockJump::WallClockJump(std::chrono::seconds length) noexcept
{
    secondsAhead = length.count();
}

WallClockJump::~WallClockJump()
{
    secondsAhead = 0;
}

}  // namespace tonvale::test

// In place of the C library's function of that name.
extern "C" int gettimeofday(timeval* now, void* /*zone*/) noexcept
{
    timespec time{};
    const int result = ::clock_gettime(CLOCK_REALTIME, &time);
    *now = {.tv_sec = time.tv_sec + secondsAhead, .tv_usec = time.tv_nsec / 1000};
    return result;
}
