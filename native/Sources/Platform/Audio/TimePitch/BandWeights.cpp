// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>

#include "Platform/Audio/TimePitch/BandWeights.h"
#include "Platform/Audio/TimePitch/RealFft.h"

namespace tonvale::timepitch {

namespace {

/// 0 below, 1 above the crossover.
double risingEdge(double frequency, const Crossover& edge)
{
    return raisedCosine((frequency - edge.centre + edge.halfWidth) / (2 * edge.halfWidth));
}

double idealWeight(const LayerGeometry& geometry, double frequency)
{
    double weight = 1;
    if (geometry.lower.exists()) {
        weight *= risingEdge(frequency, geometry.lower);
    }
    if (geometry.upper.exists()) {
        weight *= 1 - risingEdge(frequency, geometry.upper);
    }
    return weight;
}

/// 1 up to 0.6, 0 from 1 on: where the correction ends.
double taper(double position)
{
    constexpr double flat = 0.6;
    return 1 - raisedCosine((position - flat) / (1 - flat));
}

}  // namespace

Array<float> makeBandWeights(const LayerGeometry& geometry, const LayerWindows& windows)
{
    constexpr float negligible = 1e-5F;  // -100 dB: such bins need not be computed
    const int size = geometry.size();
    const int largestLag = size / 5;
    RealFft fft(size);
    Array<float> weights(fft.binCount());
    Array<float> imaginary(fft.binCount());
    Array<float> power(fft.binCount());  // not needed
    for (int bin = 0; bin < fft.binCount(); ++bin) {
        weights[bin] = static_cast<float>(idealWeight(geometry, bin * geometry.binWidth()));
    }
    fft.inverse(weights.data(), imaginary.data());
    const Array<double> rho = windows.lagWindow(largestLag);
    for (int n = 0; n < size; ++n) {
        const int lag = std::min(n, size - n);
        const double correction =
            taper(static_cast<double>(lag) / largestLag) / rho[std::min(lag, largestLag)] / size;
        fft.samples()[n] = static_cast<float>(fft.samples()[n] * correction);
    }
    fft.forward(0, fft.binCount(), weights.data(), imaginary.data(), power.data());
    for (float& weight : weights) {
        weight = std::abs(weight) < negligible ? 0 : weight;
    }
    return weights;
}

}  // namespace tonvale::timepitch
