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

TEST_F(PulseAudioOutputTest, TheStreamHasTheRateOfTheDevice)
{
    static_cast<void>(
        PulseServer::control({"load-module", "module-null-sink", "sink_name=other", "rate=96000"}));
    static_cast<void>(PulseServer::control({"set-default-sink", "other"}));
    output->start(source);
    EXPECT_EQ(output->format().sampleRate, 96000);
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

TEST_F(PulseAudioOutputTest, SourceThatGivesLittleAtATimeIsAskedAgainUnbidden)
{
    output->start(source);
    source.setTone(997);
    source.giveAtMost(240);  // 5 ms every other time, and nobody says that there is more
    source.offer(48000);
    output->framesReady();
    EXPECT_TRUE(eventually([this] { return source.given() == 48000; }));
}

TEST_F(PulseAudioOutputTest, TheMixerShowsWhoPlaysAndWhat)
{
    output->setTitle("before");
    output->start(source);
    const auto shown = [] { return PulseServer::control({"list", "sink-inputs"}); };
    const std::string first = shown();
    EXPECT_NE(first.find("media.name = \"before\""), std::string::npos) << first;
    EXPECT_NE(first.find("application.name = \"Tonvale\""), std::string::npos);
    EXPECT_NE(first.find("application.id = \"io.github.tonvale.Tonvale\""), std::string::npos);
    EXPECT_NE(first.find("application.icon_name = \"io.github.tonvale.Tonvale\""),
              std::string::npos);
    EXPECT_NE(first.find("media.role = \"music\""), std::string::npos);

    output->setTitle("Für Elise");
    EXPECT_TRUE(eventually(
        [&] { return shown().find("media.name = \"Für Elise\"") != std::string::npos; }));
}

TEST_F(PulseAudioOutputTest, ANameThatIsNotUtf8IsShownAsFarAsItIs)
{
    const auto shows = [](const std::string& title) {
        return PulseServer::control({"list", "sink-inputs"}).find("media.name = \"" + title + "\"")
               != std::string::npos;
    };
    output->setTitle("caf\xE9.wav");  // of a disk from another time
    output->start(source);
    EXPECT_TRUE(shows("caf_.wav"));
    output->setTitle("\xFC"
                     "ber.wav");
    EXPECT_TRUE(eventually([&] { return shows("_ber.wav"); }));
}

}  // namespace

}  // namespace tonvale::test
