// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/Clock.h"

#include <atomic>

namespace tonvale::Clock {

namespace {

Instant steadyNow()
{
    return std::chrono::steady_clock::now();
}

std::atomic<Instant (*)()> source = steadyNow;

}  // namespace

Instant now() noexcept
{
    return source.load()();
}

void replace(Instant (*replacement)()) noexcept
{
    source.store(replacement != nullptr ? replacement : steadyNow);
}

}  // namespace tonvale::Clock
