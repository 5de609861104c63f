// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Audio/AudioPreviewEngine.h"

#include "Platform/Foundation/PlatformError.h"
#include "Support/FakeAudioDevice.h"
#include "Support/FakeClock.h"
#include "Support/Songs.h"
#include "Support/TemporaryFolder.h"
#include "Tonvale/Audio/AudioExportService.h"
#include "Tonvale/Audio/AudioPreviewEngineInternals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

namespace tonvale {
namespace {

using Internals = AudioPreviewEngineInternals;

class AudioPreview : public ::testing::Test {
protected:
    static constexpr double rate = 44100;

    /// A song whose samples tell their frame: its number modulo 1000, in thousandths.
    std::filesystem::path makeSong(const std::string& name, std::int64_t frames) const
    {
        std::vector<float> samples(static_cast<std::size_t>(frames));
        for (std::int64_t frame = 0; frame < frames; ++frame) {
            samples[static_cast<std::size_t>(frame)] = sampleOf(frame);
        }
        test::writeSong(folder.path() / name, rate, {samples});
        return folder.path() / name;
    }

    static float sampleOf(std::int64_t frame) { return static_cast<float>(frame % 1000) / 1000.0F; }

    void load(double seconds) { preview.load(makeSong("song.wav", std::llround(seconds * rate))); }

    std::string failureOfPlay(int cents, double startTime)
    {
        try {
            preview.play(cents, startTime);
        } catch (const LocalizedError& error) {
            return error.errorDescription();
        }
        return "";
    }

    static constexpr float halfAStep = 0.0005F;  // between two frames' samples

    test::TemporaryFolder folder;
    test::FakeAudioDevice device;
    test::FakeClock clock;
    AudioPreviewEngine preview;
};

TEST_F(AudioPreview, BeginsWithoutASongAndWithoutADevice)
{
    EXPECT_EQ(preview.duration(), 0);
    EXPECT_EQ(preview.currentTime(), 0);
    EXPECT_EQ(device.startCount, 0);
}

TEST_F(AudioPreview, DoesNothingWithoutASong)
{
    device.refusesToStart = true;  // which it must not even try
    preview.play(300, 5);
    EXPECT_EQ(Internals::pitch(preview), 0);
    EXPECT_FALSE(Internals::isPlaying(preview));
    EXPECT_EQ(preview.currentTime(), 0);
    EXPECT_EQ(device.startCount, 0);
}

TEST_F(AudioPreview, KnowsTheSongsDuration)
{
    load(10);
    EXPECT_EQ(preview.duration(), 10.0);
    preview.load(makeSong("three.wav", 3));
    EXPECT_EQ(preview.duration(), 3 / rate);
}

TEST_F(AudioPreview, CountsTheTimeFromWhereItStarted)
{
    load(60);
    EXPECT_EQ(preview.currentTime(), 0);
    preview.play(0, 12.5);
    EXPECT_EQ(preview.currentTime(), 12.5);
    clock.advance(2);
    EXPECT_EQ(preview.currentTime(), 14.5);
    preview.stop();
    clock.advance(7);
    EXPECT_EQ(preview.currentTime(), 14.5);
    EXPECT_FALSE(Internals::isPlaying(preview));
}

TEST_F(AudioPreview, NeverCountsPastTheEndAndPlaysOnUntilStopped)
{
    load(20);
    preview.play(0, 19);
    clock.advance(1000);
    EXPECT_EQ(preview.currentTime(), 20);
    EXPECT_TRUE(Internals::isPlaying(preview));
    preview.stop();
    EXPECT_EQ(preview.currentTime(), 20);
}

TEST_F(AudioPreview, HasNoLowerLimitToItsPosition)
{
    load(20);
    preview.play(0, 1);
    clock.advance(-3);
    EXPECT_EQ(preview.currentTime(), -2);
}

TEST_F(AudioPreview, StartsOverWhereNothingIsLeft)
{
    load(20);
    for (const double start : {20.0, 21.0, -4.0}) {
        preview.play(0, start);
        EXPECT_EQ(preview.currentTime(), 0);
        clock.advance(3);
        EXPECT_EQ(preview.currentTime(), 3);
    }
}

TEST_F(AudioPreview, OpensTheDeviceAtTheFirstPlayAndKeepsItOpen)
{
    load(20);
    preview.stop();
    EXPECT_EQ(device.startCount, 0);
    preview.play(0, 0);
    preview.stop();
    EXPECT_TRUE(device.isRunning);
    preview.play(0, 0);
    preview.load(makeSong("other.wav", 4410));
    preview.play(0, 0);
    EXPECT_EQ(device.startCount, 1);
}

TEST_F(AudioPreview, OpensALostDeviceAnew)
{
    load(20);
    preview.play(0, 0);
    device.isRunning = false;
    clock.advance(1);
    EXPECT_EQ(preview.currentTime(), 1);
    preview.play(0, 5);
    EXPECT_EQ(device.startCount, 2);
    EXPECT_TRUE(device.isRunning);
}

TEST_F(AudioPreview, ClosesTheDeviceWhenItGoes)
{
    {
        AudioPreviewEngine other;
        other.load(makeSong("other.wav", 44100));
        other.play(0, 0);
        EXPECT_TRUE(device.isRunning);
    }
    EXPECT_FALSE(device.isRunning);
    EXPECT_EQ(device.source, nullptr);
}

TEST_F(AudioPreview, KeepsOnlyThePitchOfAPlayThatFindsNoDevice)
{
    load(20);
    device.refusesToStart = true;
    EXPECT_EQ(failureOfPlay(-300, 5), "Connection refused");
    EXPECT_EQ(Internals::pitch(preview), -300);
    EXPECT_FALSE(Internals::isPlaying(preview));
    EXPECT_EQ(preview.currentTime(), 0);
}

TEST_F(AudioPreview, PlaysOnWhenAPlayInBetweenFindsNoDevice)
{
    load(20);
    preview.play(0, 5);
    clock.advance(1);
    device.isRunning = false;
    device.refusesToStart = true;
    EXPECT_EQ(failureOfPlay(200, 10), "Connection refused");
    EXPECT_TRUE(Internals::isPlaying(preview));
    clock.advance(1);
    EXPECT_EQ(preview.currentTime(), 7);
    EXPECT_EQ(Internals::pitch(preview), 200);
}

TEST_F(AudioPreview, ChangesThePitchAndNothingElse)
{
    load(20);
    preview.play(100, 5);
    EXPECT_EQ(Internals::pitch(preview), 100);
    clock.advance(1);
    preview.setPitch(-300);
    EXPECT_EQ(Internals::pitch(preview), -300);
    EXPECT_EQ(preview.currentTime(), 6);
    EXPECT_TRUE(Internals::isPlaying(preview));
    EXPECT_EQ(device.startCount, 1);
}

TEST_F(AudioPreview, StopsAndRewindsForANewSong)
{
    load(20);
    preview.play(0, 5);
    clock.advance(1);
    preview.load(makeSong("other.wav", 44100));
    EXPECT_FALSE(Internals::isPlaying(preview));
    EXPECT_EQ(preview.currentTime(), 0);
    EXPECT_EQ(preview.duration(), 1);
}

TEST_F(AudioPreview, GivesTheDeviceTheNameOfTheSong)
{
    preview.load(makeSong("Früh am Tag.wav", 4410));
    preview.play(0, 0);  // which opens the device
    EXPECT_EQ(device.title, "Früh am Tag.wav");
    preview.load(makeSong("other.wav", 4410));
    EXPECT_EQ(device.title, "other.wav");
    EXPECT_THROW(preview.load(folder.path() / "missing.wav"), PlatformError);
    EXPECT_EQ(device.title, "other.wav");
}

TEST_F(AudioPreview, KeepsTheSongAndPlaysOnWhenAnotherDoesNotOpen)
{
    load(20);
    preview.play(0, 5);
    clock.advance(1);
    EXPECT_THROW(preview.load(folder.path() / "missing.wav"), PlatformError);
    EXPECT_TRUE(Internals::isPlaying(preview));
    EXPECT_EQ(preview.currentTime(), 6);
    EXPECT_EQ(preview.duration(), 20);
}

TEST_F(AudioPreview, SurvivesAnEmptySong)
{
    preview.load(makeSong("empty.wav", 0));
    EXPECT_EQ(preview.duration(), 0);
    preview.play(0, 3);
    EXPECT_TRUE(Internals::isPlaying(preview));
    clock.advance(5);
    EXPECT_EQ(preview.currentTime(), 0);
    preview.stop();
}

TEST_F(AudioPreview, GivesTheFramesFromTheStartOn)
{
    load(20);
    Internals::renderByHand(preview);
    preview.play(0, 10.0);
    EXPECT_NEAR(Internals::nextSample(preview), sampleOf(441000), halfAStep);
    EXPECT_NEAR(Internals::nextSample(preview), sampleOf(441001), halfAStep);
    preview.play(0, 0.99999);
    EXPECT_NEAR(Internals::nextSample(preview), sampleOf(44099), halfAStep);
    preview.play(0, 20);
    EXPECT_NEAR(Internals::nextSample(preview), sampleOf(0), halfAStep);
    EXPECT_NEAR(Internals::nextSample(preview), sampleOf(1), halfAStep);
}

TEST_F(AudioPreview, GivesTheLastFrameAloneAndThenSilence)
{
    load(1);
    Internals::renderByHand(preview);
    preview.play(0, 0.99999);
    EXPECT_NEAR(Internals::nextSample(preview), sampleOf(44099), halfAStep);
    EXPECT_EQ(Internals::nextSample(preview), 0);
    EXPECT_EQ(Internals::nextSample(preview), 0);
}

TEST_F(AudioPreview, GivesSilenceOnceStoppedButNotAtALoad)
{
    load(2);
    Internals::renderByHand(preview);
    preview.play(0, 0.5);
    preview.load(makeSong("other.wav", 44100));
    EXPECT_NEAR(Internals::nextSample(preview), sampleOf(22050), halfAStep);
    preview.stop();
    EXPECT_EQ(Internals::nextSample(preview), 0);
}

TEST_F(AudioPreview, SoundsLikeTheSavedFile)
{
    const auto song = test::tones({440, 660}, rate, 50000);
    test::writeSong(folder.path() / "tones.wav", rate, song);
    preview.load(folder.path() / "tones.wav");
    Internals::renderByHand(preview);
    preview.play(300, 0);
    AudioExportService::render(folder.path() / "tones.wav", folder.path() / "saved.wav", 300);
    const test::Song saved = test::readSong(folder.path() / "saved.wav");

    const auto buffer = AudioPCMBuffer::create(saved.format, 1024);
    float difference = 0;
    for (std::size_t start = 0; start + 1024 <= 50000; start += 1024) {
        ASSERT_EQ(Internals::engine(preview).renderOffline(1024, *buffer),
                  AudioEngineManualRenderingStatus::success);
        for (std::size_t frame = 0; frame < 1024; ++frame) {
            difference = std::max(
                difference, std::abs(buffer->channel(1)[frame] - saved.channels[1][start + frame]));
        }
    }
    EXPECT_LE(difference, 0.6F / 32768);  // the rounding to 16 bits
}

TEST_F(AudioPreview, AbortsForAStartThatIsNoNumber)
{
    load(1);
    EXPECT_DEATH(preview.play(0, std::nan("")), "");
}

}  // namespace
}  // namespace tonvale
