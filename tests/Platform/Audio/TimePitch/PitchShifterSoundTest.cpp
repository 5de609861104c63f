// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "TestSignals.h"

namespace tonvale::timepitch {
namespace {

using test::Signal;

constexpr double rate = 44100;

double ratioOf(float cents)
{
    return std::exp2(static_cast<double>(cents) / 1200);
}

/// Signal-to-noise ratio of shifted tones against their exact ideal, away from the ends.
double shiftedTonesQuality(const std::vector<double>& frequencies, float cents, double sampleRate)
{
    std::vector<test::Partial> partials;
    std::vector<double> ideal;
    for (const double frequency : frequencies) {
        partials.push_back({frequency, 0.5 / static_cast<double>(frequencies.size()), frequency});
        ideal.push_back(frequency * ratioOf(cents));
    }
    const auto frames = static_cast<std::size_t>(1.5 * sampleRate);
    const Signal out = test::shifted(test::tones(partials, sampleRate, frames), sampleRate, cents);
    return test::toneToRest(out[0], frames / 3, 2 * frames / 3, sampleRate, ideal);
}

TEST(PitchShifterSoundTest, SingleTonesAreCleanEverywhere)
{
    for (const double frequency : {55.0, 110.0, 440.0, 1000.0, 2500.0, 3500.0, 7040.0}) {
        for (const float cents : {-600.0F, -50.0F, 300.0F, 600.0F}) {
            // Measured 46 dB and more; in the crossovers two layers must agree.
            EXPECT_GT(shiftedTonesQuality({frequency}, cents, rate), 40)
                << frequency << " Hz " << cents;
        }
    }
}

TEST(PitchShifterSoundTest, ChordsAreCleanAtEveryRate)
{
    for (const double sampleRate : {8000.0, 32000.0, 44100.0, 48000.0, 96000.0, 192000.0}) {
        for (const float cents : {-400.0F, 300.0F}) {
            EXPECT_GT(shiftedTonesQuality({220, 277.18, 329.63}, cents, sampleRate), 35)
                << sampleRate << " " << cents;  // measured 43 to 46 dB
        }
    }
}

TEST(PitchShifterSoundTest, BassFifthIsResolved)
{
    // 27 Hz apart: what the long window of the lowest layer is for. Measured 23.8 dB; a window of
    // 4096 frames gives 1 dB.
    EXPECT_GT(shiftedTonesQuality({55, 82.4}, 300, rate), 20);
}

TEST(PitchShifterSoundTest, LevelOfATonesIsKeptWithinAFewHundredthsOfADecibel)
{
    for (const double frequency : {110.0, 440.0, 1000.0, 3500.0, 8000.0}) {
        const Signal out =
            test::shifted(test::tones({{frequency, 0.5, 0}}, rate, 44100), rate, 500);
        const double level =
            test::toneAmplitude(out[0], 15000, 30000, rate, frequency * ratioOf(500));
        EXPECT_NEAR(test::decibels(level / 0.5), 0, 0.1) << frequency;
    }
}

TEST(PitchShifterSoundTest, LevelOfNoiseIsKeptWithinHalfADecibel)
{
    const Signal in = test::noise(0.3, 88200, 1, 21);
    for (const float cents : {-600.0F, -100.0F, 100.0F}) {  // upwards the top octave is lost
        const Signal out = test::shifted(in, rate, cents);
        // White noise shifted down fills only part of the band: the energy per hertz stays.
        const double expected = std::sqrt(std::min(1.0, ratioOf(cents)));
        const double level = test::rms(out[0], 20000, 70000) / test::rms(in[0], 20000, 70000);
        EXPECT_NEAR(test::decibels(level / expected), cents < 0 ? test::decibels(1 / expected) : 0,
                    0.5)
            << cents;
    }
}

TEST(PitchShifterSoundTest, GlideFollowsTheIdealFrequency)
{
    constexpr double start = 300;
    constexpr double octavesPerSecond = 0.5;
    const double k = octavesPerSecond * std::log(2.0);
    const auto phase = [&](double t) {
        return 6.283185307179586 * start * (std::exp(k * t) - 1) / k;
    };
    Signal in = test::silence(88200);
    for (std::size_t i = 0; i < in[0].size(); ++i) {
        in[0][i] = static_cast<float>(0.5 * std::sin(phase(static_cast<double>(i) / rate)));
    }
    const double ratio = ratioOf(400);
    const Signal out = test::shifted(in, rate, 400);
    double sine = 0;
    double cosine = 0;
    double energy = 0;
    for (std::size_t i = 30000; i < 50000; ++i) {  // projection on the ideal of any phase
        const double angle = ratio * phase(static_cast<double>(i) / rate);
        const auto x = static_cast<double>(out[0][i]);
        sine += x * std::sin(angle);
        cosine += x * std::cos(angle);
        energy += x * x;
    }
    const double explained = 2 * (sine * sine + cosine * cosine) / 20000;
    EXPECT_GT(10 * std::log10(explained / (energy - explained)), 20);
}

TEST(PitchShifterSoundTest, PulseTrainKeepsItsWaveShape)
{
    Signal in = test::silence(88200);
    for (std::size_t i = 1000; i < in[0].size(); i += 400) {
        in[0][i] = 0.5F;
    }
    const Signal out = test::shifted(in, rate, 300);
    const auto crest = [](const test::Channel& channel) {
        double peak = 0;
        for (std::size_t i = 60000; i < 80000; ++i) {
            peak = std::max(peak, std::abs(static_cast<double>(channel[i])));
        }
        return peak / test::rms(channel, 60000, 80000);
    };
    // A pulse train has a crest of 20; partials with free phases would have about 4. The shift
    // moves the top of the spectrum out, so the ideal is lower by the cube root or so.
    EXPECT_GT(crest(out[0]), 0.7 * crest(in[0]));
}

TEST(PitchShifterSoundTest, NothingIsHeardBeforeAnAttack)
{
    Signal in = test::silence(44100);
    for (std::size_t i = 0; i < 6000; ++i) {
        const auto t = static_cast<double>(i);
        in[0][20000 + i] = static_cast<float>(
            std::exp(-t / 900) * (0.4 * std::sin(0.06 * t) + 0.3 * std::sin(0.41 * t)));
    }
    for (const float cents : {-600.0F, 100.0F, 600.0F}) {
        const Signal out = test::shifted(in, rate, cents);
        const double before = test::rms(out[0], 18000, 19900);
        EXPECT_LT(test::decibels(before / test::rms(out[0], 20000, 21000)), -70) << cents;
    }
}

TEST(PitchShifterSoundTest, PannedPairKeepsItsSides)
{
    Signal in = test::tones({{330, 0.4, 0}, {660, 0.2, 1}}, rate, 66150, 2);
    const Signal right = test::tones({{523.25, 0.4, 0}, {1046.5, 0.2, 1}}, rate, 66150, 1);
    in[1] = right[0];
    const Signal out = test::shifted(in, rate, -300);
    const double ratio = ratioOf(-300);
    const double own = test::toneAmplitude(out[0], 20000, 45000, rate, 330 * ratio);
    const double leaked = test::toneAmplitude(out[1], 20000, 45000, rate, 330 * ratio);
    EXPECT_LT(test::decibels(leaked / own), -50);
}

TEST(PitchShifterSoundTest, OppositePhaseStaysOpposite)
{
    Signal in = test::noise(0.3, 44100, 2, 8);
    std::ranges::transform(in[0], in[1].begin(), [](float sample) { return -sample; });
    const Signal out = test::shifted(in, rate, 700);
    for (std::size_t i = 0; i < out[0].size(); ++i) {
        ASSERT_EQ(out[0][i], -out[1][i]);
    }
}

}  // namespace
}  // namespace tonvale::timepitch
