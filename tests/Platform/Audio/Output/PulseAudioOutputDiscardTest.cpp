// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/SoundTest.h"
#include "Support/ProcessState.h"
#include "Support/WallClock.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <chrono>

namespace tonvale::test {

namespace {

using DiscardTest = SoundTest;

TEST_F(DiscardTest, WhatIsQueuedFadesOutWithin30MillisecondsExactlyWhereItWas)
{
    Recorder recorder;
    output->start(source);
    std::vector<double> milliseconds;
    for (int round = 0; round < 5; ++round) {
        const std::size_t before = recorder.frameCount();
        play(997);
        ASSERT_TRUE(recorder.waitForSeconds(0.3 + 0.003 * round));
        const double moment = recorder.frameAt(Recorder::Clock::now());
        stop();
        ASSERT_TRUE(recorder.waitForSeconds(0.15));
        const std::vector<float> left = recorder.channel(0);
        const std::size_t begin = soundIn(left, before);
        const std::size_t full = toneThenFade(left, begin, source);
        const std::size_t silent = begin + full + fadeFrames;
        const bool isExact = full > 0 && soundIn(left, silent) == left.size();
        milliseconds.push_back(isExact ? (static_cast<double>(silent) - moment) / 48 : 1000);
    }
    // The third of five: a server without real-time rights on a busy machine may be late.
    std::sort(milliseconds.begin(), milliseconds.end());
    EXPECT_LT(milliseconds[2], 30);
}

TEST_F(DiscardTest, NewFramesFollowTheFadeAtOnceAndWhole)
{
    Recorder recorder;
    output->start(source);
    bool isExact = false;
    for (int round = 0; round < undisturbedRounds && !isExact; ++round) {
        const std::size_t before = recorder.frameCount();
        play(997);
        ASSERT_TRUE(recorder.waitForSeconds(0.4));
        stop();
        play(1501, 24000);
        ASSERT_TRUE(recorder.waitForSeconds(0.9));
        const std::vector<float> left = recorder.channel(0);
        const std::size_t begin = soundIn(left, before);
        const std::size_t silent = begin + toneThenFade(left, begin, source) + fadeFrames;
        const std::size_t next = soundIn(left, silent);
        isExact = silent > begin + fadeFrames && next - silent < 48U * 20
                  && toneIn(left, next, source, 1501) == 24000
                  && soundIn(left, next + 24000) == left.size();
        output->discardQueued();
    }
    EXPECT_TRUE(isExact);
}

TEST_F(DiscardTest, RepeatedSeeksLeaveNothingBehind)
{
    Recorder recorder;
    output->start(source);
    play(997);
    ASSERT_TRUE(recorder.waitForSeconds(0.3));
    for (int seek = 0; seek < 20; ++seek) {
        stop();
        play(997);
        ASSERT_TRUE(recorder.waitForSeconds(0.01));
    }
    stop();
    ASSERT_TRUE(recorder.waitForSilence());
    const std::size_t silent = recorder.frameCount();
    ASSERT_TRUE(recorder.waitForSeconds(0.3));
    const std::vector<float> left = recorder.channel(0);
    EXPECT_EQ(soundIn(left, silent), left.size());
}

TEST_F(DiscardTest, NothingIsQueuedBeforeTheStartOrWhileIdle)
{
    output->discardQueued();
    output->framesReady();
    output->start(source);
    output->discardQueued();
    Recorder recorder;
    play(997, 4800);
    ASSERT_TRUE(recorder.waitForSilence());
    output->discardQueued();
    EXPECT_TRUE(output->isRunning());
}

TEST_F(DiscardTest, NewFramesAreHeardSoonAndWholeThoughTheClockWasSetMeanwhile)
{
    Recorder recorder;
    output->start(source);
    std::size_t exact = 0;
    for (int round = 0; round < undisturbedRounds && exact != 24000; ++round) {
        play(997);
        ASSERT_TRUE(recorder.waitForSound(isSounding));
        stop();
        const std::size_t before = recorder.frameCount();
        {
            // A computer that slept finds its clock set, too, and no new account of its place.
            const WallClockJump jump(std::chrono::hours(1));
            play(1501, 24000);
            ASSERT_TRUE(eventually([this] { return source.given() == 24000; }));
        }
        ASSERT_TRUE(recorder.waitForSound(isSounding));
        ASSERT_TRUE(recorder.waitForSilence());
        const std::vector<float> left = recorder.channel(0);
        for (std::size_t begin = before; begin < left.size() && exact != 24000; ++begin) {
            exact = toneIn(left, begin, source, 1501);
        }
        output->discardQueued();
    }
    EXPECT_EQ(exact, 24000U);
}

/// Its first read lasts until somebody else's thread waits for a lock.
class SlowSource final : public AudioOutputSource {
public:
    [[nodiscard]] std::uint32_t read(std::span<float> /*samples*/) noexcept override
    {
        if (!isBegun.exchange(true)) {
            isEnded = eventually([this] { return isInSystemCall(waitsFor, SYS_futex); });
        }
        return 0;
    }

    std::atomic<pid_t> waitsFor = 0;
    std::atomic<bool> isBegun = false;
    std::atomic<bool> isEnded = false;
};

TEST_F(DiscardTest, NoReadThatBeganBeforeIsUnderWayAfterwards)
{
    SlowSource slow;
    slow.waitsFor = ::gettid();
    auto slowOutput = AudioOutput::create();
    slowOutput->start(slow);
    ASSERT_TRUE(eventually([&slow] { return slow.isBegun.load(); }));
    slowOutput->discardQueued();
    EXPECT_TRUE(slow.isEnded);
}

}  // namespace

}  // namespace tonvale::test
