// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/PlatformError.h"
#include "PreviewSound.h"
#include "Support/RealTimeWatch.h"

namespace tonvale::test {

namespace {

constexpr std::uint64_t aLittle = 480;  // frames of the device: 10 ms

class AudioPreviewRealTime : public PreviewSound {
protected:
    void SetUp() override
    {
        PreviewSound::SetUp();
        load(440, 30);
        RealTimeWatch::reset();
    }

    /// What counts is what happened: callbacks that took frames of the song, and no misdeed.
    void TearDown() override
    {
        if (IsSkipped()) {
            return;
        }
        EXPECT_EQ(RealTimeWatch::forbiddenCalls(), 0U) << RealTimeWatch::lastForbiddenCall();
        EXPECT_GT(RealTimeWatch::deviceCallbacks(), 50U);
        EXPECT_GT(RealTimeWatch::libraryCalls(), 50U);
        EXPECT_GT(taken.sounding, taken.all * 9 / 10);
    }
};

TEST_F(AudioPreviewRealTime, TwoHundredRetunesWhileItPlays)
{
    preview.play(0, 0);
    ASSERT_TRUE(takes(aLittle));
    const std::uint64_t callbacks = RealTimeWatch::deviceCallbacks();
    for (int change = 0; change < 200; ++change) {
        preview.setPitch(change * 500 % 1300 - 600);
        ASSERT_TRUE(takes(aLittle / 2));
    }
    EXPECT_GE(taken.all, 200 * aLittle / 2);
    EXPECT_GE(RealTimeWatch::deviceCallbacks() - callbacks, 50U);
}

TEST_F(AudioPreviewRealTime, FiftySeeks)
{
    for (int seek = 0; seek < 50; ++seek) {
        preview.play(300, seek * 7 % 29);
        ASSERT_TRUE(takes(aLittle));
    }
    EXPECT_GE(taken.all, 50 * aLittle);
}

TEST_F(AudioPreviewRealTime, StopsAndPlaysAgainAlsoFromTheDevicesPause)
{
    for (int round = 0; round < 3; ++round) {
        preview.play(-200, 3);
        ASSERT_TRUE(takes(10 * aLittle));
        preview.stop();
        ASSERT_TRUE(round != 1 || isPaused());
    }
    const std::uint64_t before = taken.all;
    preview.play(-200, 29.9);
    ASSERT_TRUE(hasTaken(before + 4790));  // to the song's last frame
    ASSERT_TRUE(isPaused());
    preview.play(-200, 0);
    ASSERT_TRUE(takes(10 * aLittle));
}

TEST_F(AudioPreviewRealTime, AServerThatIsKilledAndComesBack)
{
    preview.play(300, 0);
    ASSERT_TRUE(takes(10 * aLittle));
    server.kill();
    ASSERT_TRUE(eventually([this] { return !isRunning(); }));
    EXPECT_THROW(preview.play(300, 5), PlatformError);
    ASSERT_TRUE(server.start());
    preview.play(300, 5);
    ASSERT_TRUE(isRunning());
    ASSERT_TRUE(takes(50 * aLittle));
}

}  // namespace

}  // namespace tonvale::test
