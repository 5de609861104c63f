// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "LiveGraph.h"
#include "Support/ProcessState.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <vector>

namespace tonvale {
namespace {

using test::areAll;
using test::Channels;
using test::eventually;
using test::Samples;
using test::side;

using AudioEngineLive = test::LiveGraph;

TEST_F(AudioEngineLive, PlaysASongToItsLastFrameAndNothingAfterIt)
{
    const auto song = steady(0.5F, 5000);
    play(song);
    const Samples samples = device.pullAll(5000);
    EXPECT_EQ(samples.size(), 10000U);
    EXPECT_TRUE(areAll(samples, 0.5F));
    EXPECT_TRUE(device.pull(10).empty());
    play(steady(0.25F));  // whatever the end had left would come first
    EXPECT_TRUE(areAll(device.pullAll(1000), 0.25F));
}

TEST_F(AudioEngineLive, PlaysWhateverSizesTheDeviceAsksFor)
{
    Channels ramp(2, Samples(20000));
    for (std::size_t frame = 0; frame < 20000; ++frame) {
        ramp[0][frame] = static_cast<float>(frame) / 32768.0F;
        ramp[1][frame] = -ramp[0][frame];
    }
    play(write("ramp.wav", 48000, ramp));
    Samples samples;
    for (std::uint32_t frames = 1; samples.size() < 40000; frames = frames * 3 % 1999) {
        const auto left = static_cast<std::uint32_t>(20000 - samples.size() / 2);
        const Samples more = device.pullAll(std::min(frames, left));
        samples.insert(samples.end(), more.begin(), more.end());
    }
    EXPECT_EQ(side(samples, 0), ramp[0]);
    EXPECT_EQ(side(samples, 1), ramp[1]);
}

TEST_F(AudioEngineLive, RunsNoFurtherAheadThanFifteenMilliseconds)
{
    const auto song = steady(0.5F);
    play(song);
    ASSERT_EQ(device.pullAll(48000).size(), 96000U);
    // All that was rendered when the pitch changes is in this first pull.
    ASSERT_TRUE(eventually([&] { return device.pull(48000).empty(); }));
    player.stop();
    play(song);
    ASSERT_FALSE(device.pullAll(1).empty());
    const Samples ready = device.pull(48000);
    EXPECT_LE(ready.size() / 2, 48000U * 15 / 1000);
}

TEST_F(AudioEngineLive, GivesNothingOfAStoppedSong)
{
    play(steady(0.5F));
    ASSERT_FALSE(device.pullAll(4000).empty());
    player.stop();
    EXPECT_EQ(device.discardCount, 2);
    EXPECT_TRUE(device.pull(1000).empty());
    play(steady(-0.25F));
    EXPECT_TRUE(areAll(device.pullAll(4000), -0.25F));
}

TEST_F(AudioEngineLive, ShowsNothingOfTheOldPlaceAfterASeek)
{
    Channels halves(2, Samples(96000, 0.5F));
    for (Samples& samples : halves) {
        std::fill(samples.begin() + 48000, samples.end(), -0.25F);
    }
    const auto song = write("halves.wav", 48000, halves);
    for (int round = 0; round < 20; ++round) {
        play(song);
        EXPECT_TRUE(areAll(device.pullAll(3000), 0.5F));
        play(song, 60000);
        const Samples after = device.pullAll(3000);
        EXPECT_TRUE(std::ranges::all_of(after, [](float sample) { return sample <= 0; }));
        EXPECT_TRUE(areAll(Samples(after.begin() + 480, after.end()), -0.25F));  // swollen
    }
}

TEST_F(AudioEngineLive, SwellsOnlyWhereASongIsTakenUpInTheMiddle)
{
    const auto song = steady(0.5F);
    play(song);
    EXPECT_EQ(device.pullAll(1)[0], 0.5F);
    play(song, 1);
    EXPECT_LT(device.pullAll(1)[0], 0.001F);
}

TEST_F(AudioEngineLive, PlaysSongsOfEveryFormatOneAfterTheOther)
{
    const std::vector<AudioFormat> formats{{48000, 2}, {8000, 1},  {96000, 6}, {192000, 2},
                                           {44100, 8}, {44100, 8}, {11025, 1}, {48000, 2}};
    for (const AudioFormat& format : formats) {
        const auto frames = static_cast<std::size_t>(format.sampleRate / 2);
        const Channels tones =
            test::tones(std::vector<double>(format.channelCount, 440), format.sampleRate, frames);
        const auto song = write("tones.wav", format.sampleRate, tones);
        pitch.setPitch(300);
        play(song, song->length() / 10);
        const Samples samples = device.pullAll(20000);
        ASSERT_EQ(samples.size(), 40000U);
        for (const std::size_t which : {0U, 1U}) {
            const double heard = test::frequencyOf(side(samples, which), device.format.sampleRate);
            EXPECT_NEAR(test::centsBetween(440 * std::exp2(0.25), heard), 0, 3) << which;
        }
    }
}

TEST_F(AudioEngineLive, TakesANewPitchWhileItPlays)
{
    const auto song = write("tone.wav", 48000, test::tones({440, 440}, 48000, 192000));
    play(song);
    (void)device.pullAll(24000);
    pitch.setPitch(400);
    (void)device.pullAll(48000 * (80 + 20) / 1000);  // shifter; ring and limiter
    const Samples after = side(device.pullAll(24000), 0);
    EXPECT_NEAR(test::centsBetween(440 * std::exp2(4.0 / 12), test::frequencyOf(after, 48000)), 0,
                1);
    EXPECT_EQ(device.discardCount, 1);  // it did not start again
}

TEST_F(AudioEngineLive, PlaysSegmentsOfNoAndOfOneFrame)
{
    const auto song = steady(0.5F);
    engine.start();
    player.scheduleSegment(song, 96000, 0);
    player.play();
    EXPECT_TRUE(device.pull(10).empty());
    player.stop();
    player.scheduleSegment(song, 0, 1);
    player.play();
    EXPECT_EQ(device.pullAll(1), Samples(2, 0.5F));
    EXPECT_TRUE(device.pull(10).empty());
    play(steady(0.25F));
    EXPECT_TRUE(areAll(device.pullAll(1000), 0.25F));
}

TEST_F(AudioEngineLive, LetsAStoppedSongGo)
{
    const auto song = steady(0.5F);
    play(song);
    (void)device.pullAll(1000);
    player.stop();
    EXPECT_TRUE(eventually([&] { return song.use_count() == 1; }));
}

TEST_F(AudioEngineLive, PlaysAFileThatWasDeleted)
{
    const auto song = steady(0.5F);
    play(song);
    (void)device.pullAll(1000);
    std::filesystem::remove_all(folder.path());
    EXPECT_TRUE(areAll(device.pullAll(90000), 0.5F));
}

TEST_F(AudioEngineLive, IsSilentToTheSongsEndWhereTheFileWasCutOff)
{
    const auto song = write("long.wav", 48000, Channels(2, Samples(960000, 0.5F)));
    play(song);
    (void)device.pullAll(1000);
    std::filesystem::resize_file(folder.path() / "long.wav", 1000000);
    const Samples rest = device.pullAll(959000);
    ASSERT_EQ(rest.size(), 2 * 959000U);
    EXPECT_TRUE(areAll(Samples(rest.begin(), rest.begin() + 200000), 0.5F));
    EXPECT_TRUE(areAll(Samples(rest.end() - 1200000, rest.end()), 0));
    play(steady(0.25F));
    EXPECT_TRUE(areAll(device.pullAll(1000), 0.25F));
}

}  // namespace
}  // namespace tonvale
