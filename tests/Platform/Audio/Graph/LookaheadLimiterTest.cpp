// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/LookaheadLimiter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <vector>

namespace tonvale {
namespace {

constexpr AudioFormat stereo{44100, 2};
constexpr float ceiling = 32766.0F / 32768.0F;

using Signal = std::vector<float>;

/// Sends `left` and half of it, inverted, through a new limiter; returns both channels without the
/// latency.
std::vector<Signal> limit(const Signal& left, std::uint32_t blockFrames = 256)
{
    LookaheadLimiter limiter(stereo, blockFrames);
    Signal padded = left;
    padded.resize(left.size() + limiter.latencyFrames());
    std::vector<Signal> result(2);
    const auto buffer = AudioPCMBuffer::create(stereo, blockFrames);
    for (std::size_t start = 0; start < padded.size(); start += blockFrames) {
        const auto frames =
            static_cast<std::uint32_t>(std::min<std::size_t>(blockFrames, padded.size() - start));
        buffer->setFrameLength(frames);
        for (std::uint32_t frame = 0; frame < frames; ++frame) {
            buffer->channel(0)[frame] = padded[start + frame];
            buffer->channel(1)[frame] = padded[start + frame] * -0.5F;
        }
        limiter.process(*buffer);
        for (std::uint32_t channel = 0; channel < 2; ++channel) {
            const auto valid = buffer->channel(channel).first(frames);
            result[channel].insert(result[channel].end(), valid.begin(), valid.end());
        }
    }
    for (Signal& channel : result) {
        channel.erase(channel.begin(), channel.begin() + limiter.latencyFrames());
    }
    return result;
}

Signal sine(std::size_t frames, double frequency, float level)
{
    Signal signal(frames);
    for (std::size_t frame = 0; frame < frames; ++frame) {
        signal[frame] = level
                        * static_cast<float>(std::sin(2 * std::numbers::pi * frequency
                                                      * static_cast<double>(frame) / 44100.0));
    }
    return signal;
}

float peakOf(const Signal& signal)
{
    float peak = 0;
    for (const float sample : signal) {
        peak = std::max(peak, std::abs(sample));
    }
    return peak;
}

TEST(LookaheadLimiter, WhatIsNoNumberIsSilence)
{
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinity = std::numeric_limits<float>::infinity();
    Signal signal(1000, 0.5F);
    signal[100] = nan;
    signal[500] = infinity;
    signal[501] = -infinity;
    const auto result = limit(signal);
    for (const std::size_t frame : {100U, 500U, 501U}) {
        EXPECT_EQ(result[0][frame], 0.0F) << frame;
        signal[frame] = 0;
    }
    EXPECT_EQ(result[0], signal);
}

TEST(LookaheadLimiter, LeavesEverySampleUntouchedUpToFullScale)
{
    const unsigned seed = 20261121;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> level(-1.0F, 1.0F);
    Signal noise(20000);
    std::ranges::generate(noise, [&] { return level(random); });
    noise[10000] = 1.0F;
    noise[10001] = -1.0F;
    EXPECT_EQ(limit(noise)[0], noise);
}

TEST(LookaheadLimiter, KeepsOvershootsBelowTheLargest16BitSample)
{
    for (const double frequency : {40.0, 997.0, 9000.0}) {
        const auto limited = limit(sine(30000, frequency, 1.41F));
        EXPECT_LE(peakOf(limited[0]), ceiling) << frequency;
        EXPECT_GT(peakOf(limited[0]), 0.95F) << frequency;
    }
}

TEST(LookaheadLimiter, HoldsASinglePeakDownWithoutTouchingWhatIsFarFromIt)
{
    Signal signal = sine(44100, 440, 0.5F);
    signal[22050] = 1.4F;
    const auto limited = limit(signal);
    EXPECT_LE(limited[0][22050], ceiling);
    EXPECT_GT(limited[0][22050], 0.99F);
    const auto lookahead = static_cast<std::ptrdiff_t>(LookaheadLimiter(stereo, 1).latencyFrames());
    EXPECT_TRUE(std::equal(signal.begin(), signal.begin() + 22050 - lookahead, limited[0].begin()));
    constexpr std::ptrdiff_t released = 22050 + 8820;  // 0.2 s after the peak
    EXPECT_TRUE(std::equal(signal.begin() + released, signal.end(), limited[0].begin() + released));
}

TEST(LookaheadLimiter, GivesAllChannelsTheSameGain)
{
    Signal signal = sine(20000, 300, 0.8F);
    signal[9000] = 1.3F;
    const auto limited = limit(signal);
    for (std::size_t frame = 0; frame < signal.size(); ++frame) {
        ASSERT_NEAR(limited[1][frame], limited[0][frame] * -0.5F, 1e-6F) << frame;
    }
}

TEST(LookaheadLimiter, ChangesItsGainSmoothly)
{
    Signal signal(20000, 0.5F);
    signal[10000] = 2.0F;
    const auto limited = limit(signal);
    for (std::size_t frame = 1; frame < signal.size(); ++frame) {
        if (frame != 10000 && frame != 10001) {
            // Half the gain within 220 frames: no step may be larger than a 200th of the level.
            ASSERT_LT(std::abs(limited[0][frame] - limited[0][frame - 1]), 0.0025F) << frame;
        }
    }
}

TEST(LookaheadLimiter, ForgetsAPeakOfThreeDecibelsWithinItsPreroll)
{
    Signal signal(44100, 0.9F);
    signal[10000] = 1.4F;
    const std::size_t preroll = LookaheadLimiter(stereo, 1).prerollFrames();
    const auto limited = limit(signal);
    EXPECT_LT(limited[0][10000 + preroll / 2], 0.9F);
    EXPECT_EQ(limited[0][10000 + preroll], 0.9F);
    EXPECT_LT(limited[0][10000 + preroll - 450], 0.9F) << "nor does it ask for much more";
}

TEST(LookaheadLimiter, GoesDownAlongAStraightLineAsLongAsTheLookahead)
{
    constexpr std::size_t peak = 10000;
    Signal signal(20000, 0.5F);
    signal[peak] = 2.0F;
    const auto limited = limit(signal);
    const std::size_t lookahead = LookaheadLimiter(stereo, 1).latencyFrames();
    EXPECT_EQ(lookahead, 221U) << "5 ms";
    const double reduction = 1 - static_cast<double>(ceiling) / 2;
    for (std::size_t before = 1; before <= lookahead + 1; ++before) {
        const double part = 1 - static_cast<double>(before) / static_cast<double>(lookahead + 1);
        EXPECT_NEAR(limited[0][peak - before], 0.5 * (1 - reduction * part), 1e-6) << before;
    }
    EXPECT_EQ(limited[0][peak - lookahead - 1], 0.5F);
}

TEST(LookaheadLimiter, BeginsAnewWhenReset)
{
    LookaheadLimiter limiter(stereo, 256);
    const auto buffer = AudioPCMBuffer::create(stereo, 256);
    const auto process = [&](float level) {
        buffer->setFrameLength(256);
        std::ranges::fill(buffer->channel(0), level);
        std::ranges::fill(buffer->channel(1), level);
        limiter.process(*buffer);
        return Signal(buffer->channel(0).begin(), buffer->channel(0).end());
    };
    (void)process(2.0F);
    limiter.reset();
    Signal expected(256, 0.5F);
    std::fill_n(expected.begin(), limiter.latencyFrames(), 0.0F);
    EXPECT_EQ(process(0.5F), expected);
    EXPECT_EQ(process(0.75F)[255], 0.75F);
}

TEST(LookaheadLimiter, BeginsAnewInTheMiddleOfAReduction)
{
    LookaheadLimiter used(stereo, 256);
    LookaheadLimiter fresh(stereo, 256);
    const auto buffer = AudioPCMBuffer::create(stereo, 256);
    const auto process = [&buffer](LookaheadLimiter& limiter, float level) {
        buffer->setFrameLength(256);
        for (std::uint32_t frame = 0; frame < 256; ++frame) {
            buffer->channel(0)[frame] = frame % 100 == 50 ? level : 0.5F;
            buffer->channel(1)[frame] = 0.25F;
        }
        limiter.process(*buffer);
        return Signal(buffer->channel(0).begin(), buffer->channel(0).end());
    };
    for (int round = 0; round < 3; ++round) {
        (void)process(used, 4.0F);
    }
    used.reset();
    for (const float level : {1.2F, 0.5F, 1.1F, 0.5F}) {
        EXPECT_EQ(process(used, level), process(fresh, level)) << level;
    }
}

TEST(LookaheadLimiter, DoesNotDependOnBlockSizes)
{
    const Signal signal = sine(10000, 60, 1.3F);
    const auto expected = limit(signal, 4096);
    for (const std::uint32_t blockFrames : {1U, 7U, 64U, 1000U}) {
        EXPECT_EQ(limit(signal, blockFrames), expected) << blockFrames;
    }
}

}  // namespace
}  // namespace tonvale
