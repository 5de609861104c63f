// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/SoundTest.h"
#include "Support/ProcessState.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cmath>
#include <numbers>

namespace tonvale::test {

namespace {

constexpr std::size_t fadeFrames = 240;  // 5 ms
using DiscardTest = SoundTest;

/// What comes `frame` frames behind the last one at full level.
float faded(const ToneSource& source, std::size_t fullFrames, std::size_t frame)
{
    const double angle = std::numbers::pi * static_cast<double>(frame + 1) / fadeFrames;
    const auto place = static_cast<std::int64_t>(fullFrames + frame);
    return static_cast<float>((0.5 + 0.5 * std::cos(angle)) * source.tone(997, place));
}

/// The frames of a 997 Hz tone from `begin` on that came before its fade.
/// The fade's first frames differ from the tone by less than a float can tell.
std::size_t expectToneThenFade(const std::vector<float>& left, std::size_t begin,
                               const ToneSource& source)
{
    std::size_t full = toneIn(left, begin, source, 997);
    std::size_t end = begin + full;
    while (end < left.size() && left[end] != 0.0F) {
        ++end;
    }
    full = end + 1 - begin - fadeFrames;  // the fade's last frame is the first silent one
    for (std::size_t frame = 0; frame < fadeFrames; ++frame) {
        // Two roundings to float apart, at most.
        EXPECT_NEAR(left[begin + full + frame], faded(source, full, frame), 1e-7) << frame;
    }
    return full;
}

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
        const std::size_t full = expectToneThenFade(left, begin, source);
        const std::size_t silent = begin + full + fadeFrames;
        EXPECT_EQ(soundIn(left, silent), left.size()) << "all old frames are gone";
        milliseconds.push_back((static_cast<double>(silent) - moment) / 48);
    }
    // The third of five: a server without real-time rights on a busy machine may be late.
    std::sort(milliseconds.begin(), milliseconds.end());
    EXPECT_LT(milliseconds[2], 30);
    EXPECT_EQ(output->underrunCount(), 0U);
}

TEST_F(DiscardTest, NewFramesFollowTheFadeAtOnceAndWhole)
{
    Recorder recorder;
    output->start(source);
    play(997);
    ASSERT_TRUE(recorder.waitForSeconds(0.4));
    stop();
    play(1501, 24000);
    ASSERT_TRUE(recorder.waitForSeconds(0.9));

    const std::vector<float> left = recorder.channel(0);
    const std::size_t begin = soundIn(left);
    const std::size_t full = expectToneThenFade(left, begin, source);
    const std::size_t silent = begin + full + fadeFrames;
    const std::size_t next = soundIn(left, silent);
    EXPECT_LT(next - silent, 48U * 20) << "at most 20 ms later, on a busy machine";
    EXPECT_EQ(toneIn(left, next, source, 1501), 24000U);
    EXPECT_EQ(soundIn(left, next + 24000), left.size());
    EXPECT_EQ(output->underrunCount(), 0U);
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
    EXPECT_EQ(output->underrunCount(), 0U);
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

/// Its first read lasts until somebody else's thread waits for a lock.
class SlowSource final : public AudioOutputSource {
public:
    [[nodiscard]] std::uint32_t read(std::span<float> /*samples*/) noexcept override
    {
        if (!isBegun.exchange(true)) {
            while (!isInSystemCall(waitsFor, SYS_futex)) {
            }
            isEnded = true;
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
    while (!slow.isBegun) {
    }
    slowOutput->discardQueued();
    EXPECT_TRUE(slow.isEnded);
}

}  // namespace

}  // namespace tonvale::test
