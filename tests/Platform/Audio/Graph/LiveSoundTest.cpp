// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "LiveGraph.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <numeric>
#include <random>
#include <vector>

namespace tonvale {
namespace {

using test::Channels;
using test::Samples;
using test::side;

constexpr double rate = 48000;

/// What the export writes, before it becomes 16 bits.
Channels renderOffline(const std::shared_ptr<AudioFile>& song, float cents)
{
    AudioEngine engine;
    AudioPlayerNode player;
    AudioUnitTimePitch pitch;
    const AudioFormat format = song->processingFormat();
    constexpr std::uint32_t blockFrames = 4096;
    engine.attach(player);
    engine.attach(pitch);
    engine.connect(player, pitch, format);
    engine.connect(pitch, engine.mainMixerNode(), format);
    engine.enableManualRenderingMode(AudioEngineManualRenderingMode::offline, format, blockFrames);
    pitch.setPitch(cents);
    engine.start();
    player.scheduleSegment(song, 0, static_cast<std::uint32_t>(song->length()));
    player.play();
    const auto buffer = AudioPCMBuffer::create(format, blockFrames);
    Channels result(format.channelCount);
    while (engine.manualRenderingSampleTime() < song->length()) {
        const auto frames = static_cast<std::uint32_t>(std::min<std::int64_t>(
            blockFrames, song->length() - engine.manualRenderingSampleTime()));
        EXPECT_EQ(engine.renderOffline(frames, *buffer), AudioEngineManualRenderingStatus::success);
        for (std::uint32_t channel = 0; channel < format.channelCount; ++channel) {
            const auto valid = buffer->channel(channel).first(frames);
            result[channel].insert(result[channel].end(), valid.begin(), valid.end());
        }
    }
    return result;
}

/// A chord that beats against hits and noise, near full scale.
Channels music(std::size_t frames)
{
    const unsigned seed = 7;
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> level(-0.3F, 0.3F);
    const Channels low = test::tones({220, 277.18}, rate, frames);
    const Channels high = test::tones({659.26, 1318.5}, rate, frames);
    Channels channels(2, Samples(frames));
    for (std::size_t channel = 0; channel < 2; ++channel) {
        for (std::size_t frame = 0; frame < frames; ++frame) {
            const std::size_t sinceHit = frame % 12000;
            const float hit = std::exp(-static_cast<float>(sinceHit) / 500.0F) * level(random);
            channels[channel][frame] = 0.7F * (low[channel][frame] + high[channel][frame]) + hit;
        }
    }
    return channels;
}

double decibels(double ratio)
{
    return 20 * std::log10(ratio);
}

double rms(const Samples& samples)
{
    double sum = 0;
    for (const float sample : samples) {
        sum += double{sample} * double{sample};
    }
    return std::sqrt(sum / static_cast<double>(samples.size()));
}

class LiveSound : public test::LiveGraph, public ::testing::WithParamInterface<float> {};
INSTANTIATE_TEST_SUITE_P(Cents, LiveSound,
                         ::testing::Values(-600.0F, -100.0F, 0.0F, 300.0F, 700.0F));

TEST_P(LiveSound, IsTheExportSampleForSample)
{
    constexpr std::uint32_t frames = 100000;
    const auto song = write("music.wav", rate, music(frames));
    const Channels expected = renderOffline(song, GetParam());
    pitch.setPitch(GetParam());
    for (int round = 0; round < 2; ++round) {  // also the second time, when nothing is built anew
        play(open("music.wav"));
        const Samples heard = device.pullAll(frames);
        EXPECT_EQ(side(heard, 0), expected[0]);
        EXPECT_EQ(side(heard, 1), expected[1]);
    }
}

/// Three tones that are periods of 1/40 s long together, so that 50 ms tell their levels exactly.
constexpr std::array<double, 3> chord{240, 560, 1760};

Channels chordSong(std::size_t frames)
{
    Channels song(2, Samples(frames));
    for (const double frequency : chord) {
        const Channels tone = test::tones({frequency}, rate, frames);
        for (std::size_t frame = 0; frame < frames; ++frame) {
            song[0][frame] += 0.4F * tone[0][frame];
        }
    }
    song[1] = song[0];
    return song;
}

/// What is left of `samples` when tones of these frequencies are taken out, each with the level and
/// phase that fits best, against what was there.
double restOf(const Samples& samples, double ratio)
{
    std::vector<std::vector<double>> waves;
    for (const double frequency : chord) {
        for (const double phase : {0.0, std::numbers::pi / 2}) {
            std::vector<double>& wave = waves.emplace_back(samples.size());
            for (std::size_t frame = 0; frame < samples.size(); ++frame) {
                const double turns = ratio * frequency * static_cast<double>(frame) / rate;
                wave[frame] = std::sin(2 * std::numbers::pi * turns + phase);
            }
        }
    }
    std::vector<double> rest(samples.begin(), samples.end());
    for (int sweep = 0; sweep < 100; ++sweep) {  // one wave after the other, until none improves
        for (const std::vector<double>& wave : waves) {
            const double square = std::inner_product(wave.begin(), wave.end(), wave.begin(), 0.0);
            const double level =
                std::inner_product(wave.begin(), wave.end(), rest.begin(), 0.0) / square;
            for (std::size_t frame = 0; frame < rest.size(); ++frame) {
                rest[frame] -= level * wave[frame];
            }
        }
    }
    return rms(Samples(rest.begin(), rest.end())) / rms(samples);
}

TEST_P(LiveSound, BeginsInTheMiddleAsTheSongSoundsThere)
{
    const auto song = write("chord.wav", rate, chordSong(150000));
    const Samples expected = renderOffline(song, GetParam())[0];
    const double ratio = std::exp2(double{GetParam()} / 1200);
    const double level = rms(Samples(expected.begin() + 50000, expected.begin() + 98000));
    pitch.setPitch(GetParam());
    for (const std::uint32_t start : {30000U, 75000U, 75321U}) {
        play(song, start);
        const Samples heard = side(device.pullAll(24000), 0);
        ASSERT_EQ(heard.size(), 24000U);
        const Samples first(heard.begin() + 240, heard.begin() + 2640);  // behind the swell
        EXPECT_LT(decibels(restOf(first, ratio)), -30) << start;
        EXPECT_NEAR(decibels(rms(heard) / level), 0, 0.1) << start;
    }
}

TEST_P(LiveSound, NearTheBeginningIsTheExportSampleForSample)
{
    // All that lies before can be heard there, so that nothing is left to chance.
    const auto song = write("music.wav", rate, music(60000));
    const Samples expected = renderOffline(song, GetParam())[0];
    pitch.setPitch(GetParam());
    for (const std::uint32_t start : {1U, 100U, 5000U, 15000U}) {
        play(song, start);
        const Samples heard = side(device.pullAll(20000), 0);
        ASSERT_EQ(heard.size(), 20000U);
        EXPECT_TRUE(std::equal(heard.begin() + 240, heard.end(), expected.begin() + start + 240))
            << start;
    }
}

using LiveSoundUnshifted = test::LiveGraph;

TEST_F(LiveSoundUnshifted, BeginsAnywhereExactly)
{
    const Channels channels = music(150000);
    const auto song = write("music.wav", rate, channels);
    const Samples expected = renderOffline(song, 0)[1];
    for (const std::uint32_t start : {30000U, 75000U, 149000U}) {
        play(song, start);
        const Samples heard = side(device.pullAll(1000), 1);
        ASSERT_EQ(heard.size(), 1000U);
        EXPECT_TRUE(std::equal(heard.begin() + 240, heard.end(), expected.begin() + start + 240))
            << start;
    }
}

}  // namespace
}  // namespace tonvale
