// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Audio/PlaybackSegment.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tonvale {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::int64_t minute = 60 * 44100;

void expectSegment(const PlaybackSegment& segment, double startTime, std::int64_t startingFrame,
                   std::uint32_t frameCount)
{
    EXPECT_EQ(segment.startTime, startTime);
    EXPECT_EQ(segment.startingFrame, startingFrame);
    EXPECT_EQ(segment.frameCount, frameCount);
}

TEST(PlaybackSegment, StartsAtTheFrameUnderTheTimeAndGoesToTheEnd)
{
    expectSegment(playbackSegment(0, minute, 44100), 0, 0, minute);
    expectSegment(playbackSegment(10.0, minute, 44100), 10.0, 441000, minute - 441000);
}

TEST(PlaybackSegment, TruncatesAndDoesNotRound)
{
    expectSegment(playbackSegment(0.99999, minute, 44100), 0.99999, 44099, minute - 44099);
}

TEST(PlaybackSegment, BeginsAtTheBeginningForATimeBeforeIt)
{
    expectSegment(playbackSegment(-3, minute, 44100), 0, 0, minute);
    expectSegment(playbackSegment(-infinity, minute, 44100), 0, 0, minute);
}

TEST(PlaybackSegment, StartsOverAtOrPastTheEnd)
{
    expectSegment(playbackSegment(60, minute, 44100), 0, 0, minute);
    expectSegment(playbackSegment(60.5, minute, 44100), 0, 0, minute);
    expectSegment(playbackSegment(1e300, minute, 44100), 0, 0, minute);
    expectSegment(playbackSegment(infinity, minute, 44100), 0, 0, minute);
}

TEST(PlaybackSegment, PlaysTheLastFrameAlone)
{
    const double time = 59.99999;  // frame 2645999.559
    expectSegment(playbackSegment(time, minute, 44100), time, minute - 1, 1);
}

TEST(PlaybackSegment, StartsOverAtTheEndOfASongOfAnyLength)
{
    for (const double rate : {8000.0, 22050.0, 44100.0, 48000.0, 96000.0}) {
        for (std::int64_t length = 1; length < 20000; ++length) {
            const PlaybackSegment segment =
                playbackSegment(static_cast<double>(length) / rate, length, rate);
            ASSERT_EQ(segment.startTime, 0) << length << " frames at " << rate;
            ASSERT_EQ(segment.frameCount, length);
        }
    }
}

TEST(PlaybackSegment, OfAnEmptySongIsEmpty)
{
    expectSegment(playbackSegment(0, 0, 44100), 0, 0, 0);
    expectSegment(playbackSegment(5, 0, 44100), 0, 0, 0);
}

TEST(PlaybackSegment, OfASongOfOneFrameIsThatFrame)
{
    expectSegment(playbackSegment(0, 1, 44100), 0, 0, 1);
    expectSegment(playbackSegment(1, 1, 44100), 0, 0, 1);
}

TEST(PlaybackSegment, CountsUpToThirtyTwoBits)
{
    constexpr std::int64_t most = std::numeric_limits<std::uint32_t>::max();
    expectSegment(playbackSegment(0, most, 44100), 0, 0, most);
    // A longer song may be played from a start that leaves no more than that.
    EXPECT_EQ(playbackSegment(1, most + 44100, 44100).frameCount, most);
}

TEST(PlaybackSegmentDeathTest, AbortsForAStartThatIsNoNumber)
{
    EXPECT_DEATH(static_cast<void>(playbackSegment(std::nan(""), minute, 44100)), "");
}

TEST(PlaybackSegmentDeathTest, AbortsForMoreFramesThanThirtyTwoBitsCount)
{
    EXPECT_DEATH(static_cast<void>(playbackSegment(0, 0x1'0000'0000, 44100)), "");
    EXPECT_DEATH(static_cast<void>(playbackSegment(1e9, 0x1'0000'0000, 44100)), "");
}

}  // namespace
}  // namespace tonvale
