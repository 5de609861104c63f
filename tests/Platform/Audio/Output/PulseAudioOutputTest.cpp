// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/SoundTest.h"
#include "Support/ProcessState.h"

#include <chrono>

namespace tonvale::test {

namespace {

using PulseAudioOutputTest = SoundTest;

/// Whether our stream, the only one in this server that ever is, is paused.
bool isPaused()
{
    return PulseServer::control({"list", "sink-inputs"}).find("Corked: yes") != std::string::npos;
}

TEST_F(PulseAudioOutputTest, EveryFrameIsHeardUnchangedOnItsOwnSide)
{
    Recorder recorder;
    output->start(source);
    EXPECT_EQ(output->format(), (AudioFormat{.sampleRate = 48000, .channelCount = 2}));
    std::size_t exact = 0;
    for (int round = 0; round < undisturbedRounds && exact != 30000; ++round) {
        const std::size_t before = recorder.frameCount();
        play(997, 30000);
        ASSERT_TRUE(recorder.waitForSound(isSounding));
        ASSERT_TRUE(recorder.waitForSilence());
        const std::vector<float> left = recorder.channel(0);
        const std::vector<float> right = recorder.channel(1);
        const std::size_t begin = soundIn(left, before);
        exact = toneIn(left, begin, source, 997);
        for (std::size_t frame = begin; frame < left.size(); ++frame) {
            ASSERT_EQ(right[frame], -0.5F * left[frame]) << frame - begin;
        }
        output->discardQueued();
    }
    EXPECT_EQ(exact, 30000U);
}

TEST_F(PulseAudioOutputTest, SoundBeginsWithin60MillisecondsAndTheDevicesTarget)
{
    Recorder recorder;
    output->start(source);
    const std::size_t before = recorder.frameCount();
    const double moment = recorder.frameAt(Recorder::Clock::now());
    play(1501);
    ASSERT_TRUE(recorder.waitForSeconds(0.5));
    const std::size_t begin = soundIn(recorder.channel(0), before);
    EXPECT_LT((static_cast<double>(begin) - moment) / 48, 60 + 80);
}

TEST_F(PulseAudioOutputTest, SilentStreamIsPausedCostsNothingAndResumesAtOnce)
{
    Recorder recorder;
    output->start(source);
    play(997, 4800);
    ASSERT_TRUE(recorder.waitForSound(isSounding));
    ASSERT_TRUE(recorder.waitForSilence());
    ASSERT_TRUE(eventually(isPaused));

    play(1501, 9600);
    ASSERT_TRUE(recorder.waitForSound(isSounding));
    ASSERT_TRUE(recorder.waitForSilence());
    const std::vector<float> left = recorder.channel(0);
    std::size_t begin = soundIn(left);
    EXPECT_EQ(toneIn(left, begin, source, 997), 4800U);
    begin = soundIn(left, begin + 4800);
    EXPECT_EQ(toneIn(left, begin, source, 1501), 9600U);
}

TEST_F(PulseAudioOutputTest, IdleOutputUsesNoProcessor)
{
    output->start(source);
    {
        Recorder recorder;
        play(997, 4800);
        ASSERT_TRUE(recorder.waitForSound(isSounding));
        ASSERT_TRUE(recorder.waitForSilence());
    }
    ASSERT_TRUE(eventually(isPaused));
    // A thread that is not woken for a second: nothing at all, but for the reading of the clock
    // and the server's account of its place, which it sends every one and a half seconds. A busy
    // server may still ask once after it paused.
    double used = 0;
    ASSERT_TRUE(eventually([&] {
        const double before = processorSeconds();
        const bool isAsked = source.isAskedWithin(std::chrono::seconds(1));
        used = processorSeconds() - before;
        return !isAsked;
    }));
    EXPECT_LT(used, 0.005);
}

TEST_F(PulseAudioOutputTest, UnderrunsAreThoseInTheMiddleOfAPiece)
{
    Recorder recorder;
    output->start(source);
    play(997, 9600);
    ASSERT_TRUE(recorder.waitForSound(isSounding));
    ASSERT_TRUE(recorder.waitForSilence());
    EXPECT_EQ(output->underrunCount(), 0U) << "the end of a piece is none";

    source.offer(9600);  // the piece goes on after all
    output->framesReady();
    ASSERT_TRUE(eventually([this] { return source.given() == 19200; }));
    EXPECT_EQ(output->underrunCount(), 1U);

    ASSERT_TRUE(recorder.waitForSilence());
    stop();
    play(1501, 9600);
    ASSERT_TRUE(eventually([this] { return source.given() == 9600; }));
    EXPECT_EQ(output->underrunCount(), 1U) << "another piece after a stop";
}

}  // namespace

}  // namespace tonvale::test
