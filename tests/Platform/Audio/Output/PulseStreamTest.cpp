// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/SoundTest.h"
#include "Support/ProcessState.h"

#include <chrono>

namespace tonvale::test {

namespace {

using PulseStreamTest = SoundTest;

std::string shownStreams()
{
    return PulseServer::control({"list", "sink-inputs"});
}

bool shows(const std::string& text)
{
    return shownStreams().find(text) != std::string::npos;
}

bool isPaused()
{
    return shows("Corked: yes");
}

TEST_F(PulseStreamTest, TheStreamHasTheRateOfTheDevice)
{
    static_cast<void>(
        PulseServer::control({"load-module", "module-null-sink", "sink_name=other", "rate=96000"}));
    static_cast<void>(PulseServer::control({"set-default-sink", "other"}));
    output->start(source);
    EXPECT_EQ(output->format().sampleRate, 96000);
}

TEST_F(PulseStreamTest, SourceThatGivesLittleAtATimeIsAskedAgainUnbidden)
{
    output->start(source);
    source.setTone(997);
    source.giveAtMost(240);  // 5 ms every other time, and nobody says that there is more
    source.offer(48000);
    output->framesReady();
    EXPECT_TRUE(eventually([this] { return source.given() == 48000; }));
}

TEST_F(PulseStreamTest, TheMixerShowsWhoPlaysAndWhat)
{
    output->setTitle("before");
    output->start(source);
    const std::string first = shownStreams();
    EXPECT_NE(first.find("media.name = \"before\""), std::string::npos) << first;
    EXPECT_NE(first.find("application.name = \"Tonvale\""), std::string::npos);
    EXPECT_NE(first.find("application.id = \"io.github.tonvale.Tonvale\""), std::string::npos);
    EXPECT_NE(first.find("application.icon_name = \"io.github.tonvale.Tonvale\""),
              std::string::npos);
    EXPECT_NE(first.find("media.role = \"music\""), std::string::npos);

    output->setTitle("Für Elise");
    EXPECT_TRUE(eventually([] { return shows("media.name = \"Für Elise\""); }));
}

TEST_F(PulseStreamTest, ANameThatIsNotUtf8IsShownAsFarAsItIs)
{
    output->setTitle("caf\xE9.wav");  // of a disk from another time
    output->start(source);
    EXPECT_TRUE(shows("media.name = \"caf_.wav\""));
    output->setTitle("\xFC"
                     "ber.wav");
    EXPECT_TRUE(eventually([] { return shows("media.name = \"_ber.wav\""); }));
}

TEST_F(PulseStreamTest, EachSideIsHeardOnItsOwn)
{
    Recorder recorder;
    output->start(source);
    EXPECT_EQ(output->format(), (AudioFormat{.sampleRate = 48000, .channelCount = 2}));
    play(997);
    ASSERT_TRUE(recorder.waitForSound(isSounding));
    const std::vector<float> left = recorder.channel(0);
    const std::vector<float> right = recorder.channel(1);
    for (std::size_t frame = 0; frame < std::min(left.size(), right.size()); ++frame) {
        ASSERT_EQ(right[frame], -0.5F * left[frame]) << frame;
    }
}

TEST_F(PulseStreamTest, AShortPieceIsHeardWhole)
{
    constexpr std::int64_t piece = 2000;  // goes out at once; a busy server may still stumble
    Recorder recorder;
    output->start(source);
    std::size_t exact = 0;
    for (int round = 0; round < undisturbedRounds && exact != piece; ++round) {
        const std::size_t before = recorder.frameCount();
        play(997, piece);
        ASSERT_TRUE(recorder.waitForSound(isSounding));
        ASSERT_TRUE(recorder.waitForSilence());
        const std::vector<float> left = recorder.channel(0);
        exact = toneIn(left, soundIn(left, before), source, 997);
        output->discardQueued();
    }
    EXPECT_EQ(exact, static_cast<std::size_t>(piece));
}

TEST_F(PulseStreamTest, AfterAPieceTheStreamPausesUntilThereIsMore)
{
    constexpr std::int64_t piece =
        2000;  // goes out at once, so that a busy machine adds no underrun
    output->start(source);
    play(997, piece);
    ASSERT_TRUE(eventually([this] { return source.given() == piece; }));
    ASSERT_TRUE(eventually(isPaused));
    EXPECT_EQ(output->underrunCount(), 0U) << "the end of a piece is none";
    EXPECT_TRUE(eventually([this] { return !source.isAskedWithin(std::chrono::milliseconds(50)); }))
        << "a paused stream asks for nothing";

    source.offer(piece);  // it goes on after all
    output->framesReady();
    ASSERT_TRUE(eventually([this] { return source.given() == 2 * piece; }));
    EXPECT_EQ(output->underrunCount(), 1U);
    ASSERT_TRUE(eventually(isPaused));

    stop();
    play(1501, piece);
    ASSERT_TRUE(eventually([this] { return source.given() == piece; }));
    EXPECT_EQ(output->underrunCount(), 1U) << "another piece after a stop";
}

TEST_F(PulseStreamTest, NothingOldIsHeardBetweenTwoPieces)
{
    constexpr std::int64_t piece = 2000;
    Recorder recorder;
    output->start(source);
    play(997, 55000);  // more than the output remembers
    ASSERT_TRUE(recorder.waitForSound(isSounding));
    bool isSilent = false;
    for (int round = 0; round < undisturbedRounds && !isSilent; ++round) {
        ASSERT_TRUE(eventually(isPaused));
        ASSERT_TRUE(recorder.waitForSilence());
        const std::size_t before = recorder.frameCount();
        play(1501, piece);
        ASSERT_TRUE(recorder.waitForSound(isSounding));
        ASSERT_TRUE(recorder.waitForSilence());
        const std::vector<float> left = recorder.channel(0);
        isSilent = toneIn(left, soundIn(left, before), source, 1501) == piece;
    }
    EXPECT_TRUE(isSilent);
}

TEST_F(PulseStreamTest, AFewHundredMillisecondsAreTakenAheadAtMost)
{
    output->start(source);
    server.freeze();  // takes what fits, and plays none of it
    play(997);
    ASSERT_TRUE(eventually([this] { return source.given() > 0; }));
    EXPECT_LT(source.given(), 48000 / 5);
    server.thaw();
    EXPECT_TRUE(eventually([this] { return source.given() > 48000; }));
}

TEST_F(PulseStreamTest, AStopFadesOutAndWhatComesNextIsHeardWhole)
{
    constexpr std::int64_t piece = 200;  // less than what was queued
    Recorder recorder;
    output->start(source);
    bool isExact = false;
    for (int round = 0; round < undisturbedRounds && !isExact; ++round) {
        const std::size_t before = recorder.frameCount();
        play(997);
        ASSERT_TRUE(recorder.waitForSound(isSounding));
        stop();
        play(1501, piece);
        ASSERT_TRUE(eventually([this] { return source.given() == piece; }));
        ASSERT_TRUE(recorder.waitForSilence());
        const std::vector<float> left = recorder.channel(0);
        const std::size_t begin = soundIn(left, before);
        const std::size_t full = toneThenFade(left, begin, source);
        const std::size_t next = soundIn(left, begin + full + fadeFrames);
        isExact = full > 0 && toneIn(left, next, source, 1501) == piece
                  && soundIn(left, next + piece) == left.size();
        output->discardQueued();
    }
    EXPECT_TRUE(isExact);
}

TEST_F(PulseStreamTest, WhatIsQueuedIsNotHeardAfterAStop)
{
    Recorder recorder;
    output->start(source);
    play(997);
    ASSERT_TRUE(recorder.waitForSound(isSounding));
    stop();
    EXPECT_TRUE(recorder.waitForSilence());
    EXPECT_TRUE(output->isRunning());
    EXPECT_TRUE(eventually(isPaused));
}

}  // namespace

}  // namespace tonvale::test
