// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>

#include "Platform/Audio/TimePitch/LayerWindows.h"

namespace tonvale::timepitch {

namespace {

double squaredCosine(double x, double width)
{
    const double c = std::cos(pi / 2 * x / width);
    return c * c;
}

}  // namespace

LayerWindows::LayerWindows(const LayerGeometry& geometry)
    : attack_(geometry.attack)
    , size_(geometry.size())
    , fullAnalysis_(size_)
    , fullSynthesis_(size_)
    , analysis_(geometry.decimatedSize())
    , synthesis_(2 * geometry.release / geometry.decimation)
    , product_(2 * geometry.release)
{
    constexpr double smallestDivisor = 1e-6;  // wa is 0 at its ends, where p is far smaller still
    const int release = geometry.release;
    for (int n = 0; n < size_; ++n) {
        const double x = n - attack_;
        const double wa = squaredCosine(x, x < 0 ? attack_ : release);
        const double c = std::abs(x) < release ? squaredCosine(x, release) : 0;
        fullAnalysis_[n] = wa;
        fullSynthesis_[n] = wa > smallestDivisor ? c * c / wa : 0;
        productSum_ += c * c;
    }
    const double unity = geometry.hop / productSum_;
    const int first = attack_ - release;
    for (int n = 0; n < 2 * release; ++n) {
        const double c = squaredCosine(n - release, release);
        product_[n] = static_cast<float>(c * c * unity);
    }
    const int step = geometry.decimation;
    for (int n = 0; n < geometry.decimatedSize(); ++n) {
        analysis_[n] = static_cast<float>(fullAnalysis_[n * step] * step);
    }
    for (int n = 0; n < synthesis_.size(); ++n) {
        synthesis_[n] = static_cast<float>(fullSynthesis_[first + n * step] * unity / size_);
    }
    placePhaseCentre(geometry);
}

void LayerWindows::placePhaseCentre(const LayerGeometry& geometry)
{
    constexpr double wayToCentroid = 0.7;
    double weight = 0;
    double moment = 0;
    for (int n = 0; n < size_; ++n) {
        weight += fullAnalysis_[n];
        moment += fullAnalysis_[n] * (n - attack_);
    }
    const double offset = wayToCentroid * moment / weight;
    const int step = geometry.decimation;  // a frame of the layer's own rate
    phaseCentre_ = attack_ + step * static_cast<int>(std::lround(offset / step));
    double cosines = 0;
    for (int n = 0; n < size_; ++n) {
        cosines += fullAnalysis_[n] * std::cos(twoPi * (n - phaseCentre_) / size_);
    }
    phaseBend_ = 1 - cosines / weight;
}

Array<double> LayerWindows::lagWindow(int largestLag) const
{
    constexpr int grid = 16;  // rho is smooth: computed on a grid, straight lines between
    Array<double> rho(largestLag + 1);
    double before = 1;
    for (int lag = 0; lag < largestLag + grid; lag += grid) {
        double sum = 0;
        for (int n = lag; n < size_; ++n) {
            sum += 0.5
                   * (fullAnalysis_[n - lag] * fullSynthesis_[n]
                      + fullAnalysis_[n] * fullSynthesis_[n - lag]);
        }
        const double after = sum / productSum_;
        for (int point = std::max(0, lag - grid + 1); point <= std::min(lag, largestLag); ++point) {
            rho[point] = before + (after - before) * (point - lag + grid) / grid;
        }
        before = after;
    }
    return rho;
}

}  // namespace tonvale::timepitch
