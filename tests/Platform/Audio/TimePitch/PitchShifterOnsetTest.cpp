// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

#include "TestSignals.h"

namespace tonvale::timepitch::test {
namespace {

constexpr double rate = 44100;

double secondsOf(std::size_t frame)
{
    return static_cast<double>(frame) / rate;
}

/// A dry hit: two partials that die away within some 10 ms.
double hit(double seconds, double ratio = 1)
{
    if (seconds < 0) {
        return 0;
    }
    const double turns = 2 * std::numbers::pi * ratio * seconds;
    return 0.4 * std::exp(-seconds / 0.008) * (std::sin(1300 * turns) + std::sin(2900 * turns));
}

/// Hits every `gap` seconds from 0.3 s on, twenty of them.
Signal roll(double gap, double ratio)
{
    Signal signal = silence(70000);
    for (std::size_t frame = 0; frame < signal[0].size(); ++frame) {
        const double seconds = secondsOf(frame) - 0.3;
        if (seconds >= 0 && seconds < 20 * gap) {
            signal[0][frame] = static_cast<float>(hit(std::fmod(seconds, gap), ratio));
        }
    }
    return signal;
}

/// Levels in dB of stretches of `seconds`, each beginning half of that after the one before.
std::vector<double> levels(const Channel& samples, double seconds)
{
    constexpr double floor = 1e-4;
    const auto size = static_cast<std::size_t>(seconds * rate);
    std::vector<double> result;
    for (std::size_t start = 0; start + size <= samples.size(); start += size / 2) {
        result.push_back(decibels(rms(samples, start, start + size) + floor));
    }
    return result;
}

/// Rms difference of the levels of two signals where the ideal one is within 45 dB of its loudest.
double envelopeError(const Channel& ideal, const Channel& out)
{
    const std::vector<double> wanted = levels(ideal, 0.005);
    const std::vector<double> got = levels(out, 0.005);
    const double quietest = *std::ranges::max_element(wanted) - 45;
    double sum = 0;
    int count = 0;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        if (wanted[i] > quietest) {
            sum += (got[i] - wanted[i]) * (got[i] - wanted[i]);
            ++count;
        }
    }
    return std::sqrt(sum / count);
}

TEST(PitchShifterOnsetTest, SoundThatSwellsIntoAnOnsetIsHeardBeforeIt)
{
    // As a vowel begins: a tone grows by 40 dB within 80 ms, then a hit comes on top.
    constexpr std::size_t onset = 40000;
    Signal in = silence(60000);
    for (std::size_t frame = 0; frame < in[0].size(); ++frame) {
        const double after = secondsOf(frame) - secondsOf(onset);
        const double level = after < 0 ? 0.2 * std::pow(10.0, 2 * after / 0.08) : 0.2;
        const double tone = std::sin(2 * std::numbers::pi * 500 * secondsOf(frame));
        in[0][frame] = static_cast<float>(level * tone + hit(after));
    }
    constexpr std::size_t before = onset - 662;  // 15 ms
    for (const float cents : {-400.0F, 500.0F}) {
        const Signal out = shifted(in, rate, cents);
        const double change =
            decibels(rms(out[0], before, onset - 66) / rms(in[0], before, onset - 66));
        // The swelling itself cannot be cut better than to the windows' own smearing.
        EXPECT_NEAR(change, 0, 3) << cents;
    }
}

TEST(PitchShifterOnsetTest, ToneThatRisesAtAnOnsetKeepsItsLevelUntilThen)
{
    // What sounds on through an onset overlaps with itself, so it must not start anew there.
    constexpr std::size_t onset = 40000;
    constexpr std::size_t window = 441;
    for (const double frequency : {400.0, 800.0, 6000.0}) {
        Signal in = test::tones({{frequency, 0.1, 0}}, rate, 60000);
        for (std::size_t frame = onset; frame < in[0].size(); ++frame) {
            in[0][frame] *= 1.41F;  // 3 dB
            in[0][frame] += static_cast<float>(hit(secondsOf(frame) - secondsOf(onset)));
        }
        for (const float cents : {-400.0F, 500.0F}) {
            const Signal out = shifted(in, rate, cents);
            double lowest = 0;
            for (std::size_t end = onset - 66; end > onset - 2500; end -= 110) {
                const double level = decibels(rms(out[0], end - window, end) * std::sqrt(2.0));
                lowest = std::min(lowest, level - decibels(0.1));
            }
            EXPECT_GT(lowest, -1) << frequency << " Hz, " << cents << " cents";  // was -11
        }
    }
}

/// Syllables of a voice: pulses at 110 Hz that ring at a formant, with swells of 60 ms.
Signal syllables()
{
    constexpr double period = 1 / 110.0;
    constexpr double syllable = 0.25;
    Signal signal = silence(132300);
    for (std::size_t frame = 0; frame < signal[0].size(); ++frame) {
        const double inSyllable = std::fmod(secondsOf(frame), syllable);
        const double inPulse = std::fmod(inSyllable, period);
        const double loudness =
            std::min({0.0, 40 * (inSyllable / 0.06 - 1), 60 * (0.18 - inSyllable) / 0.05});  // dB
        const double ring = std::exp(-inPulse / 0.004)
                            * (std::sin(2 * std::numbers::pi * 650 * inPulse)
                               + 0.5 * std::sin(2 * std::numbers::pi * 2100 * inPulse));
        signal[0][frame] = static_cast<float>(0.3 * std::pow(10.0, loudness / 20) * ring);
    }
    return signal;
}

TEST(PitchShifterOnsetTest, VoiceHasNoDropouts)
{
    const Signal in = syllables();
    const std::vector<double> wanted = levels(in[0], 0.01);
    const double quietest = *std::ranges::max_element(wanted) - 40;
    for (const float cents : {-400.0F, 500.0F}) {
        const std::vector<double> got = levels(shifted(in, rate, cents)[0], 0.01);
        int dropouts = 0;
        int count = 0;
        for (std::size_t i = 0; i < wanted.size(); ++i) {
            count += wanted[i] > quietest ? 1 : 0;
            dropouts += wanted[i] > quietest && got[i] < wanted[i] - 6 ? 1 : 0;
        }
        // Between two pulses the level falls so fast that some of it is lost.
        EXPECT_LT(dropouts, 0.04 * count) << cents << " cents, of " << count;
    }
}

TEST(PitchShifterOnsetTest, HitsThatFollowEachOtherFastAreAllHeard)
{
    for (const double gap : {0.030, 0.040, 0.045, 0.050, 0.060}) {
        const Signal in = roll(gap, 1);
        const auto first = static_cast<std::size_t>(0.3 * rate);
        const auto last = first + static_cast<std::size_t>(20 * gap * rate);
        for (const float cents : {-400.0F, 500.0F}) {
            const Signal out = shifted(in, rate, cents);
            EXPECT_NEAR(decibels(rms(out[0], first, last) / rms(in[0], first, last)), 0, 1.2)
                << gap << " s, " << cents << " cents";
            const Signal ideal = roll(gap, std::exp2(static_cast<double>(cents) / 1200));
            EXPECT_LT(envelopeError(ideal[0], out[0]), 3.3) << gap << " s, " << cents << " cents";
        }
    }
}

}  // namespace
}  // namespace tonvale::timepitch::test
