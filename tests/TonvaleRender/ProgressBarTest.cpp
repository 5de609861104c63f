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
    EXPECT_EQ(ProgressBar::line(0.5, seconds(10)),
              "[###############---------------]  50 %  0:10 left");
    EXPECT_EQ(ProgressBar::line(0.1, seconds(20)),
              "[###---------------------------]  10 %  3:00 left");
    EXPECT_EQ(ProgressBar::line(1, seconds(10)),
              "[##############################] 100 %  0:00 left");
}

TEST(ProgressBar, PromisesNothingBeforeTheFirstFrame)
{
    EXPECT_EQ(ProgressBar::line(0, seconds(1)), "[------------------------------]   0 %");
}

TEST(ProgressBar, RedrawsTenTimesASecondAtMostAndWipesItsLine)
{
    std::ostringstream terminal;
    const ProgressBar::Clock::time_point start{};
    {
        ProgressBar bar(terminal, start);
        for (int frame = 0; frame <= 1000; ++frame) {
            bar.update(frame / 1000.0, "", start + milliseconds(frame));
        }
    }
    const std::string drawn = terminal.str();
    EXPECT_EQ(std::count(drawn.begin(), drawn.end(), '\r'), 11 + 1);
    EXPECT_TRUE(drawn.ends_with("\r\x1b[K"));
}

TEST(ProgressBar, MakesRoomAndComesBackAtOnceWithANote)
{
    std::ostringstream terminal;
    const ProgressBar::Clock::time_point start{};
    ProgressBar bar(terminal, start);
    bar.update(0.5, "  1 of 3", start);
    bar.wipe();
    bar.wipe();
    EXPECT_TRUE(terminal.str().ends_with(" left  1 of 3\r\x1b[K"));
    bar.update(0.5, "  2 of 3", start + milliseconds(1));
    EXPECT_TRUE(terminal.str().ends_with(" left  2 of 3"));
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
