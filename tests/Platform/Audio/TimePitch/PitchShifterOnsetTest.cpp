// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <numbers>

#include "TestSignals.h"

namespace tonvale::timepitch::test {
namespace {

constexpr double rate = 44100;

double secondsOf(std::size_t frame)
{
    return static_cast<double>(frame) / rate;
}

/// A dry hit: two partials that die away within some 10 ms.
double hit(double seconds)
{
    if (seconds < 0) {
        return 0;
    }
    const double turns = 2 * std::numbers::pi * seconds;
    return 0.4 * std::exp(-seconds / 0.008) * (std::sin(1300 * turns) + std::sin(2900 * turns));
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
        EXPECT_NEAR(change, 0, 4) << cents;
    }
}

TEST(PitchShifterOnsetTest, HitsThatFollowEachOtherFastAreAllHeard)
{
    for (const double gap : {0.040, 0.045, 0.050}) {
        Signal in = silence(60000);
        for (std::size_t frame = 0; frame < in[0].size(); ++frame) {
            const double seconds = secondsOf(frame) - 0.3;
            if (seconds >= 0 && seconds < 20 * gap) {
                in[0][frame] = static_cast<float>(hit(std::fmod(seconds, gap)));
            }
        }
        const auto first = static_cast<std::size_t>(0.3 * rate);
        const auto last = first + static_cast<std::size_t>(20 * gap * rate);
        for (const float cents : {-400.0F, 500.0F}) {
            const Signal out = shifted(in, rate, cents);
            // The windows of the lower bands hold two hits each, which costs up to 2.4 dB.
            EXPECT_NEAR(decibels(rms(out[0], first, last) / rms(in[0], first, last)), 0, 3)
                << gap << " s, " << cents << " cents";
        }
    }
}

}  // namespace
}  // namespace tonvale::timepitch::test
