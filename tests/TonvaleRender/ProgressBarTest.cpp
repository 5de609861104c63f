// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/ProgressBar.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>

namespace tonvale {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

TEST(ProgressBar, TellsShareAndTimeLeft)
{
    EXPECT_EQ(ProgressBar::line(50, 100, seconds(10)),
              "[###############---------------]  50 %  0:10 left");
    EXPECT_EQ(ProgressBar::line(1, 10, seconds(20)),
              "[###---------------------------]  10 %  3:00 left");
    EXPECT_EQ(ProgressBar::line(100, 100, seconds(10)),
              "[##############################] 100 %  0:00 left");
}

TEST(ProgressBar, PromisesNothingBeforeTheFirstFrame)
{
    EXPECT_EQ(ProgressBar::line(0, 100, seconds(1)), "[------------------------------]   0 %");
}

TEST(ProgressBar, RedrawsTenTimesASecondAtMostAndWipesItsLine)
{
    std::ostringstream terminal;
    const ProgressBar::Clock::time_point start{};
    {
        ProgressBar bar(terminal, start);
        for (int frame = 0; frame <= 1000; ++frame) {
            bar.update(frame, 1000, start + milliseconds(frame));
        }
    }
    const std::string drawn = terminal.str();
    EXPECT_EQ(std::count(drawn.begin(), drawn.end(), '\r'), 11 + 1);
    EXPECT_TRUE(drawn.ends_with("\r\x1b[K"));
}

TEST(ProgressBar, LeavesNoTraceWhenNothingWasDrawn)
{
    std::ostringstream terminal;
    {
        const ProgressBar bar(terminal);
    }
    EXPECT_EQ(terminal.str(), "");
}

}  // namespace
}  // namespace tonvale
