// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "TestSignals.h"

/// Renders that must not change unnoticed.
///
/// Every 101st sample of a short mixed signal is compared with a file in golden/, which holds one
/// number per line. A failing test writes what it got to `<name>.actual` in the working directory.
/// When a change of sound is intended and measured to be better, copy these files over golden/ and
/// say so in the commit.
namespace tonvale::timepitch {
namespace {

constexpr double rate = 44100;

/// A chord, a glide and three hits: every part of the engine has something to do.
test::Signal mixedSignal()
{
    test::Signal signal = test::tones(
        {{110, 0.2, 0}, {220.5, 0.1, 1}, {1320, 0.1, 2}, {5000, 0.05, 3}}, rate, 33075, 2);
    for (std::size_t i = 0; i < signal[0].size(); ++i) {
        const double t = static_cast<double>(i) / rate;
        signal[1][i] += static_cast<float>(0.1 * std::sin(2000 * t + 900 * t * t));
        const double beat = std::fmod(t, 0.25);
        const double hit = 0.3 * std::exp(-beat / 0.01) * std::sin(9000 * beat);
        signal[0][i] += static_cast<float>(hit);
        signal[1][i] += static_cast<float>(0.5 * hit);
    }
    return signal;
}

std::vector<float> sampled(const test::Signal& signal)
{
    std::vector<float> samples;
    for (const test::Channel& channel : signal) {
        for (std::size_t i = 50; i < channel.size(); i += 101) {
            samples.push_back(channel[i]);
        }
    }
    return samples;
}

class GoldenRenderTest : public testing::TestWithParam<int> {};

TEST_P(GoldenRenderTest, RenderIsTheRecordedOne)
{
    const int cents = GetParam();
    const std::string name =
        "mixed" + std::string(cents < 0 ? "-" : "+") + std::to_string(std::abs(cents)) + ".txt";
    const std::vector<float> actual =
        sampled(test::shifted(mixedSignal(), rate, static_cast<float>(cents)));
    std::vector<float> golden;
    std::ifstream file(std::string(TONVALE_GOLDEN_FOLDER) + "/" + name);
    for (float value = 0; file >> value;) {
        golden.push_back(value);
    }
    // Another version of FFTW may round otherwise (-130 dB), and a peak on the brink may then be
    // decided otherwise; that stays far below -60 dB.
    bool equal = golden.size() == actual.size();
    for (std::size_t i = 0; equal && i < golden.size(); ++i) {
        equal = std::abs(golden[i] - actual[i]) < 1e-3F;
    }
    EXPECT_TRUE(equal) << "see " << name << ".actual";
    if (!equal) {
        std::ofstream out(name + ".actual");
        for (const float value : actual) {
            out << value << '\n';
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Shifts, GoldenRenderTest, testing::Values(-500, -100, 300, 700));

}  // namespace
}  // namespace tonvale::timepitch
