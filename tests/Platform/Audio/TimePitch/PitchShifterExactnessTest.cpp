// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include "TestSignals.h"

namespace tonvale::timepitch {
namespace {

using test::Signal;

constexpr double allRates[] = {8000,  11025, 16000, 22050, 24000,  32000,
                               44100, 48000, 88200, 96000, 176400, 192000};

/// A second of music-like material: a chord, noise bursts, silence.
Signal mixture(double rate, unsigned channels)
{
    const auto frames = static_cast<std::size_t>(rate);
    Signal signal =
        test::tones({{220, 0.2, 0}, {277.2, 0.2, 1}, {1760, 0.1, 2}}, rate, frames, channels);
    const Signal hiss = test::noise(0.3, frames, channels, 17);
    for (unsigned channel = 0; channel < channels; ++channel) {
        for (std::size_t i = 0; i < frames; ++i) {
            const double beat = std::fmod(static_cast<double>(i) / rate, 0.2);
            signal[channel][i] += hiss[channel][i] * static_cast<float>(std::exp(-beat / 0.02));
        }
    }
    return signal;
}

TEST(PitchShifterExactnessTest, AtZeroCentsTheOutputIsTheDelayedInput)
{
    for (const double rate : allRates) {
        const Signal in = test::noise(1, static_cast<std::size_t>(rate / 2), 2, 1);
        EXPECT_EQ(test::shifted(in, rate, 0), in) << rate;
    }
}

TEST(PitchShifterExactnessTest, ZeroCentsIsExactAgainAfterALiveChangeAndBack)
{
    const double rate = 22050;
    const auto frames = static_cast<std::size_t>(6 * rate);
    const Signal in = test::tones({{220, 0.3, 0}, {1000, 0.3, 0}}, rate, frames);
    PitchShifter shifter({.sampleRate = rate, .channelCount = 1, .workerThreads = 0});
    const Signal out = test::render(shifter, in, 256, [&](PitchShifter& s, std::size_t frame) {
        s.setPitch(frame > 5120 && frame < 15000 ? 300.0F : 0.0F);
    });
    const std::size_t exact = 5 * static_cast<std::size_t>(rate);  // four seconds later
    EXPECT_TRUE(std::equal(out[0].begin(), out[0].begin() + 2000, in[0].begin()));
    EXPECT_FALSE(std::equal(out[0].begin() + 8000, out[0].begin() + 12000, in[0].begin() + 8000));
    EXPECT_TRUE(std::equal(out[0].begin() + static_cast<std::ptrdiff_t>(exact), out[0].end(),
                           in[0].begin() + static_cast<std::ptrdiff_t>(exact)));
}

TEST(PitchShifterExactnessTest, SamplesDoNotDependOnTheCallersBlocks)
{
    for (const double rate : {8000.0, 44100.0, 96000.0}) {
        const Signal in = mixture(rate, 2);
        const Signal reference = test::shifted(in, rate, 400, 512);
        for (const unsigned block : {1U, 7U, 441U, 511U, 513U, 4096U, 1000000U}) {
            EXPECT_EQ(test::shifted(in, rate, 400, block), reference) << rate << " " << block;
        }
    }
}

TEST(PitchShifterExactnessTest, TwoThreadsGiveTheSamplesOfOne)
{
    const Signal in = mixture(44100, 2);
    for (const unsigned block : {100U, 3000U, 32768U}) {
        PitchShifter one({.sampleRate = 44100, .channelCount = 2, .workerThreads = 0});
        PitchShifter two({.sampleRate = 44100, .channelCount = 2, .workerThreads = 1});
        const auto change = [](PitchShifter& shifter, std::size_t frame) {
            shifter.setPitch(frame < 24000 ? -300.0F : 500.0F);
        };
        EXPECT_EQ(test::render(two, in, block, change), test::render(one, in, block, change));
        one.reset();
        two.reset();
        EXPECT_EQ(test::render(two, in, block), test::render(one, in, block)) << "after reset";
    }
}

TEST(PitchShifterExactnessTest, ResetBringsBackTheFirstRender)
{
    const Signal in = mixture(44100, 1);
    PitchShifter shifter({.sampleRate = 44100, .channelCount = 1, .workerThreads = 0});
    shifter.setPitch(-500);
    const Signal first = test::render(shifter, in);
    test::render(shifter, test::noise(0.5, 20000, 1, 9));
    shifter.reset();
    EXPECT_EQ(test::render(shifter, in), first);
}

TEST(PitchShifterExactnessTest, SilenceStaysSilence)
{
    for (const float cents : {-1200.0F, -50.0F, 0.0F, 300.0F, 1200.0F}) {
        const Signal in = test::silence(30000, 2);
        EXPECT_EQ(test::shifted(in, 44100, cents), in);
    }
}

TEST(PitchShifterExactnessTest, SilenceReturnsAfterSound)
{
    Signal in = mixture(44100, 1);
    in[0].resize(88200);
    const Signal out = test::shifted(in, 44100, 300);
    EXPECT_TRUE(std::all_of(out[0].begin() + 44100 + 8192, out[0].end(),
                            [](float sample) { return sample == 0; }));
}

TEST(PitchShifterExactnessTest, ChannelsOfOneSoundStayEqual)
{
    const Signal in = mixture(44100, 1);
    const Signal out = test::shifted({in[0], in[0], in[0]}, 44100, -400);
    EXPECT_EQ(out[0], out[1]);
    EXPECT_EQ(out[0], out[2]);
}

TEST(PitchShifterExactnessTest, ClicksStayWithinFiveFramesOfTheirPlaceAtEveryRate)
{
    for (const double rate : allRates) {
        const auto frames = static_cast<std::size_t>(rate * 0.4);
        for (int round = 0; round < 8; ++round) {
            const float cents = static_cast<float>(round - 4) * 300 + 50;
            const std::size_t place = frames / 2 + static_cast<std::size_t>(round * round * 11);
            Signal in = test::silence(frames);
            in[0][place] = 0.9F;
            const Signal out = test::shifted(in, rate, cents);
            const auto peak =
                std::ranges::max_element(out[0], {}, [](float x) { return std::abs(x); });
            EXPECT_NEAR(static_cast<double>(peak - out[0].begin()), static_cast<double>(place), 5)
                << rate << " Hz, " << cents << " cents";
        }
    }
}

TEST(PitchShifterExactnessTest, DcIsKept)
{
    Signal in = test::silence(44100, 1);
    std::ranges::fill(in[0], 0.5F);
    const Signal out = test::shifted(in, 44100, 300);
    for (std::size_t i = 10000; i < 30000; ++i) {
        EXPECT_NEAR(out[0][i], 0.5F, 0.01F);  // side lobes of the long window move a little
    }
}

TEST(PitchShifterRobustnessTest, NonFiniteInputIsTakenForSilence)
{
    Signal in = mixture(44100, 2);
    Signal clean = in;
    const float bad[] = {std::nanf(""), std::numeric_limits<float>::infinity(),
                         -std::numeric_limits<float>::infinity()};
    for (std::size_t i = 1000; i < 40000; i += 777) {
        in[i % 2][i] = bad[i % 3];
        clean[i % 2][i] = 0;
    }
    EXPECT_EQ(test::shifted(in, 44100, 300), test::shifted(clean, 44100, 300));
    EXPECT_EQ(test::shifted(in, 44100, 0), test::shifted(clean, 44100, 0));
}

TEST(PitchShifterRobustnessTest, HugeAndTinyInputStaysFinite)
{
    for (const float scale : {1e38F, 1e-20F, 1e-40F, 1.0F}) {
        Signal in = test::noise(1, 20000, 2, 3);
        for (float& sample : in[0]) {
            sample *= scale;
        }
        const Signal out = test::shifted(in, 44100, -700);
        EXPECT_TRUE(test::allFinite(out)) << scale;
        EXPECT_LT(test::largest(out[0]), 8 * 65536) << scale;
    }
}

TEST(PitchShifterRobustnessTest, FullScaleSquareStaysBounded)
{
    Signal in = test::silence(44100, 2);
    for (std::size_t i = 0; i < in[0].size(); ++i) {
        in[0][i] = in[1][i] = (i / 50) % 2 == 0 ? 1.0F : -1.0F;
    }
    for (const float cents : {-1200.0F, -300.0F, 700.0F, 1200.0F}) {
        EXPECT_LT(test::largest(test::shifted(in, 44100, cents)[0]), 3) << cents;
    }
}

TEST(PitchShifterRobustnessTest, AnyNumberOfChannelsAndFramesWorks)
{
    for (const unsigned channels : {1U, 2U, 3U, 6U, 8U}) {
        for (const std::size_t frames : {1U, 2U, 100U, 5000U}) {
            const Signal in = test::noise(0.5, frames, channels, channels);
            const Signal out = test::shifted(in, 44100, 300, 333);
            EXPECT_EQ(out.size(), channels);
            EXPECT_EQ(out[0].size(), frames);
            EXPECT_TRUE(test::allFinite(out));
        }
    }
}

TEST(PitchShifterRobustnessTest, UnusualRatesWork)
{
    for (const double rate : {1.0, 1000.0, 5512.5, 37800.0, 384000.0, 1e6}) {
        const Signal out = test::shifted(test::noise(0.5, 40000, 1, 2), rate, 500);
        EXPECT_TRUE(test::allFinite(out)) << rate;
    }
}

TEST(PitchShifterRobustnessTest, PitchIsClampedAndNanIgnored)
{
    PitchShifter shifter({.sampleRate = 44100, .channelCount = 1, .workerThreads = 0});
    shifter.setPitch(5000);
    EXPECT_EQ(shifter.pitch(), 1200);
    shifter.setPitch(-std::numeric_limits<float>::infinity());
    EXPECT_EQ(shifter.pitch(), -1200);
    shifter.setPitch(std::nanf(""));
    EXPECT_EQ(shifter.pitch(), -1200);
}

TEST(PitchShifterRobustnessTest, BadConfigurationsAreRefused)
{
    EXPECT_THROW(PitchShifter({0, 2, 0}), std::invalid_argument);
    EXPECT_THROW(PitchShifter({std::nan(""), 2, 0}), std::invalid_argument);
    EXPECT_THROW(PitchShifter({-44100, 2, 0}), std::invalid_argument);
    EXPECT_THROW(PitchShifter({1.1e6, 2, 0}), std::invalid_argument);
    EXPECT_THROW(PitchShifter({std::numeric_limits<double>::infinity(), 2, 0}),
                 std::invalid_argument);
    EXPECT_THROW(PitchShifter({44100, 0, 0}), std::invalid_argument);
    EXPECT_THROW(PitchShifter({44100, 2, 2}), std::invalid_argument);
}

TEST(PitchShifterRobustnessTest, ManyShiftersMayLiveOnManyThreads)
{
    const Signal in = mixture(44100, 1);
    const Signal expected = test::shifted(in, 44100, 300);
    std::vector<std::thread> threads;
    std::vector<Signal> results(3);
    for (Signal& result : results) {
        threads.emplace_back([&] { result = test::shifted(in, 44100, 300); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const Signal& result : results) {
        EXPECT_EQ(result, expected);
    }
}

}  // namespace
}  // namespace tonvale::timepitch
