// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/Timer.h"

#include "Support/MainLoop.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

namespace tonvale {
namespace {

using namespace std::chrono_literals;

TEST(Timer, CallsAgainAndAgainAtItsInterval)
{
    int calls = 0;
    const auto start = std::chrono::steady_clock::now();
    const Timer timer(20ms, [&calls] { ++calls; });
    ASSERT_TRUE(test::spinUntil([&] { return calls >= 3; }));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 58ms);  // the clocks may differ by a tick
}

TEST(Timer, QueuesItsCalls)
{
    int calls = 0;
    const Timer timer(1h, [&calls] { ++calls; });
    timer.fire();
    timer.fire();
    EXPECT_EQ(calls, 0);
    test::runQueuedCalls();
    EXPECT_EQ(calls, 2);
}

TEST(Timer, StillMakesAQueuedCallWhenItIsGoneButNoOther)
{
    int calls = 0;
    auto timer = std::make_unique<Timer>(1ms, [&calls] { ++calls; });
    timer->fire();
    timer.reset();
    test::runQueuedCalls();
    EXPECT_EQ(calls, 1);
    int others = 0;
    const Timer other(5ms, [&others] { ++others; });
    ASSERT_TRUE(test::spinUntil([&] { return others == 2; }));
    EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace tonvale
