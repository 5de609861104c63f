// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

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

TEST(LayerDesignTest, StoredBinsCoverTheBandWithRoomForTheKernel)
{
    for (const double rate : {8000.0, 44100.0, 192000.0}) {
        for (const LayerGeometry& layer : makeGeometry(rate).layers) {
            const LayerDesign design(layer);
            EXPECT_GE(design.activeBegin, 1);
            EXPECT_LE(design.activeEnd, design.binCount - 3);
            EXPECT_LE(design.firstBin + design.binCount, layer.decimatedSize() / 2 + 1);
        }
    }
}

}  // namespace
}  // namespace tonvale::timepitch
