// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

// What the library keeps of the class's promises, so that the one can be built for the other.

#include "Platform/Audio/TimePitch/PitchShifter.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "TestSignals.h"

namespace tonvale::timepitch {
namespace {

using test::Channel;
using test::Signal;

constexpr double rate = 44100;

std::size_t placeOfLargest(const Channel& samples)
{
    const auto largest =
        std::ranges::max_element(samples, {}, [](float sample) { return std::abs(sample); });
    return static_cast<std::size_t>(largest - samples.begin());
}

class RubberBandAt : public testing::TestWithParam<float> {};

INSTANTIATE_TEST_SUITE_P(Cents, RubberBandAt,
                         testing::Values(-1200.0F, -350.0F, 0.0F, 700.0F, 1200.0F),
                         [](const auto& test) {
                             return (test.param < 0 ? "Down" : "Up")
                                    + std::to_string(std::abs(static_cast<int>(test.param)));
                         });

TEST_P(RubberBandAt, AToneMovesByTheCentsThatAreSet)
{
    const Signal out = test::shifted(test::tones({{440, 0.5, 0}}, rate, 60000), rate, GetParam());
    const double frequency = 440 * std::exp2(GetParam() / 1200.0);
    // The library's own figures for a tone are better than that by ten decibels.
    EXPECT_GT(test::toneToRest(out[0], 20000, 40000, rate, {frequency}), 30);
}

TEST_P(RubberBandAt, AClickStaysInItsPlace)
{
    Signal click = test::silence(60000);
    click[0][30000] = 0.9F;
    const Signal out = test::shifted(click, rate, GetParam());
    // The library rounds its delay and its hops: a millisecond or two, and four an octave up.
    EXPECT_NEAR(static_cast<double>(placeOfLargest(out[0])), 30000, 0.004 * rate);
}

TEST_P(RubberBandAt, BlocksOfAnySizeGiveTheSameSamples)
{
    const Signal in = test::noise(0.5, 20000, 2, 3);
    const Signal whole = test::shifted(in, rate, GetParam(), 20000);
    EXPECT_EQ(test::shifted(in, rate, GetParam(), 37), whole);
    EXPECT_EQ(test::shifted(in, rate, GetParam(), 1024), whole);
}

TEST_P(RubberBandAt, AfterAResetTheStreamBeginsAgain)
{
    const Signal in = test::noise(0.5, 20000, 1, 4);
    PitchShifter shifter({.sampleRate = rate, .channelCount = 1});
    shifter.setPitch(GetParam());
    const Signal first = test::render(shifter, in);
    shifter.reset();
    EXPECT_EQ(test::render(shifter, in), first);
}

TEST_P(RubberBandAt, SilenceStaysSilence)
{
    EXPECT_EQ(test::largest(test::shifted(test::silence(30000), rate, GetParam())[0]), 0);
}

TEST(RubberBand, WhatIsNoNumberCountsAsSilence)
{
    Signal in = test::noise(0.5, 20000, 1, 5);
    in[0][5000] = std::numeric_limits<float>::quiet_NaN();
    in[0][9000] = std::numeric_limits<float>::infinity();
    Signal mended = in;
    mended[0][5000] = mended[0][9000] = 0;
    EXPECT_EQ(test::shifted(in, rate, 300), test::shifted(mended, rate, 300));
}

TEST(RubberBand, ANewPitchIsHeardWithinEightyMilliseconds)
{
    PitchShifter shifter({.sampleRate = rate, .channelCount = 1});
    const Signal in = test::tones({{440, 0.5, 0}}, rate, 90000);
    std::size_t changed = 0;
    const Signal out = test::render(shifter, in, 512, [&](PitchShifter& it, std::size_t place) {
        if (place >= 44100 && changed == 0) {
            it.setPitch(400);
            changed = place - static_cast<std::size_t>(it.latencyFrames());
        }
    });
    const std::size_t heard = changed + static_cast<std::size_t>(0.08 * rate);
    const double frequency = 440 * std::exp2(400 / 1200.0);
    EXPECT_GT(test::toneToRest(out[0], heard, heard + 8000, rate, {frequency}), 30);
    EXPECT_NEAR(
        test::decibels(test::toneAmplitude(out[0], heard, heard + 8000, rate, frequency) / 0.5), 0,
        0.6);
}

TEST(RubberBand, FramesNeverRunOutHoweverThePitchMoves)
{
    const auto seed = static_cast<std::uint32_t>(testing::UnitTest::GetInstance()->random_seed());
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 generator(seed);
    std::uniform_real_distribution<float> cents(-1200, 1200);
    for (const double sampleRate : {8000.0, 44100.0, 192000.0}) {
        PitchShifter shifter({.sampleRate = sampleRate, .channelCount = 1});
        const Signal out =
            test::render(shifter, test::noise(0.5, 60000, 1, seed), 256,
                         [&](PitchShifter& it, std::size_t) { it.setPitch(cents(generator)); });
        EXPECT_TRUE(test::allFinite(out));
        EXPECT_EQ(out[0].size(), 60000);
    }
}

TEST(RubberBand, AStartInTheMiddleSoundsAtOnce)
{
    const Signal song = test::tones({{440, 0.5, 0}}, rate, 90000);
    PitchShifter shifter({.sampleRate = rate, .channelCount = 1});
    shifter.setPitch(200);
    const auto latency = static_cast<std::size_t>(shifter.latencyFrames());
    const auto preroll = static_cast<std::size_t>(shifter.prerollFrames());
    const std::size_t start = 40000;
    const float* before = song[0].data() + start - preroll;
    shifter.prime(std::span(&before, 1), static_cast<unsigned>(preroll + latency));
    const float* in = song[0].data() + start + latency;
    Channel out(4096);
    float* place = out.data();
    shifter.process(std::span(&in, 1), std::span(&place, 1), 4096);
    const double frequency = 440 * std::exp2(200 / 1200.0);
    EXPECT_NEAR(test::toneAmplitude(out, 0, 4096, rate, frequency), 0.5, 0.02);
}

TEST(RubberBand, WhatCannotBeIsRefused)
{
    using Configuration = PitchShifter::Configuration;
    EXPECT_THROW(PitchShifter(Configuration{.sampleRate = 0}), std::invalid_argument);
    EXPECT_THROW(PitchShifter(Configuration{.channelCount = 0}), std::invalid_argument);
    EXPECT_THROW(PitchShifter(Configuration{.workerThreads = 2}), std::invalid_argument);
}

TEST(RubberBand, CentsAreKeptWithinAnOctave)
{
    PitchShifter shifter({});
    shifter.setPitch(5000);
    EXPECT_EQ(shifter.pitch(), 1200);
    shifter.setPitch(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(shifter.pitch(), 1200);
}

}  // namespace
}  // namespace tonvale::timepitch
