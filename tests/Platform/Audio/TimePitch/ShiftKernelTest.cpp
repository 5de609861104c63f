// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <array>
#include <cmath>
#include <complex>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/LayerDesign.h"

namespace tonvale::timepitch {
namespace {

using Complex = std::complex<double>;

/// What the taps do at x radians of the FFT circle from the phase centre.
Complex action(const float* taps, double x)
{
    Complex sum = 0;
    for (int tap = 0; tap < kernels::tapCount; ++tap) {
        const Complex value(static_cast<double>(taps[2 * tap]),
                            static_cast<double>(taps[2 * tap + 1]));
        sum += value * std::polar(1.0, x * (tap - kernels::tapCount / 2));
    }
    return sum;
}

/// Root mean square error of the taps under the heard window, relative to the wanted factor.
double errorOf(const float* taps, const LayerDesign& design, double offset, double chirp)
{
    double sum = 0;
    double weights = 0;
    for (int n = -design.geometry.release; n < design.geometry.release; ++n) {
        const double x = twoPi * (n - design.windows.phaseOffset()) / design.geometry.size();
        const double c = std::cos(pi / 2 * n / design.geometry.release);
        const double weight = c * c * c * c;
        const Complex wanted = std::polar(1.0, offset * x + chirp * (1 - std::cos(x)));
        sum += weight * std::norm(action(taps, x) - wanted);
        weights += weight;
    }
    return std::sqrt(sum / weights);
}

double error(const LayerDesign& design, double offset, double chirp)
{
    float taps[kernels::tapValues];
    design.kernel.taps(static_cast<float>(offset), static_cast<float>(chirp), taps);
    return errorOf(taps, design, offset, chirp);
}

TEST(ShiftKernelTest, WholeBinsWithoutChirpAreExact)
{
    for (const LayerGeometry& layer : makeGeometry(44100).layers) {
        const LayerDesign design(layer);
        EXPECT_LT(error(design, 0, 0), 1e-6) << "layer " << layer.index;
    }
}

TEST(ShiftKernelTest, FractionsOfABinAreNearlyRight)
{
    for (const LayerGeometry& layer : makeGeometry(44100).layers) {
        const LayerDesign design(layer);
        for (const double offset : {-0.5, -0.25, 0.125, 0.3125, 0.5}) {
            // Steady tones have three taps in the symmetric layers. What is left there has other
            // signs in the other three frames that overlap: tones come out at 46 dB.
            EXPECT_LT(error(design, offset, 0), layer.index == 0 ? 0.01 : 0.08)
                << "layer " << layer.index;
        }
    }
}

TEST(ShiftKernelTest, TapsBetweenEntriesLieOnStraightLinesAndEndWithTheTable)
{
    const LayerDesign design(makeGeometry(44100).layers[1]);
    const auto taps = [&design](float offset, float chirp) {
        std::array<float, kernels::tapValues> values{};
        design.kernel.taps(offset, chirp, values.data());
        return values;
    };
    constexpr float column = 1 / 16.0F;
    constexpr float row = 1 / 8.0F;
    for (const float offset : {-0.5F, 0.0F, 0.5F - column}) {
        for (const float chirp : {-1.5F, 0.0F, 1.5F - row}) {
            const auto a = taps(offset, chirp);
            const auto b = taps(offset + column, chirp);
            const auto c = taps(offset, chirp + row);
            const auto d = taps(offset + column, chirp + row);
            const auto between = taps(offset + column / 4, chirp + row / 2);
            for (std::size_t i = 0; i < between.size(); ++i) {
                const float upper = a[i] + (b[i] - a[i]) / 4;
                const float lower = c[i] + (d[i] - c[i]) / 4;
                EXPECT_NEAR(between[i], (upper + lower) / 2, 1e-6F) << offset << " " << chirp;
            }
        }
    }
    EXPECT_LT(error(design, 0.5, 1.5), 0.2);
    EXPECT_LT(error(design, -0.5, -1.5), 0.2);
    EXPECT_EQ(taps(0, 0)[kernels::tapValues - 1], 0) << "padding";
}

TEST(ShiftKernelTest, ChirpsAreMuchBetterThanNone)
{
    const LayerDesign design(makeGeometry(44100).layers[1]);
    for (const double chirp : {-1.25, -0.5, 0.5, 1.25}) {
        float plain[kernels::tapValues];
        design.kernel.taps(0.25F, 0, plain);
        const double none = errorOf(plain, design, 0.25, chirp);
        EXPECT_LT(error(design, 0.25, chirp), 0.5 * none) << chirp;
    }
}

}  // namespace
}  // namespace tonvale::timepitch
