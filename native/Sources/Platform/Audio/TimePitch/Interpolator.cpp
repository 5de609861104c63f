// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>

#include "Platform/Audio/TimePitch/Interpolator.h"
#include "Platform/Audio/TimePitch/KaiserWindow.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

namespace tonvale::timepitch {

namespace {

// A band that reaches nearer to the low rate's Nyquist frequency needs a steeper filter.
constexpr int tapsOfLowestLayer = 12;
constexpr int tapsOfOtherLayers = 20;
constexpr double betaOfLowestLayer = 8;
constexpr double betaOfOtherLayers = 7;

}  // namespace

Interpolator::Interpolator(const LayerGeometry& geometry, int largestCount)
    : decimation_(geometry.decimation)
    , tapCount_(geometry.lower.exists() ? tapsOfOtherLayers : tapsOfLowestLayer)
    , rowLength_(largestCount)
    , taps_(decimation_ * tapCount_)
    , rows_(decimation_ * largestCount)
{
    const double beta = geometry.lower.exists() ? betaOfOtherLayers : betaOfLowestLayer;
    const int half = tapCount_ / 2;
    for (int phase = 0; phase < decimation_; ++phase) {
        for (int tap = 0; tap < tapCount_; ++tap) {
            const double x = tap - half + 1 - static_cast<double>(phase) / decimation_;
            taps_[phase * tapCount_ + tap] =
                static_cast<float>(normalisedSinc(x) * kaiserWindow(x / half, beta));
        }
    }
}

void Interpolator::process(const float* in, int count, float* out) noexcept
{
    std::copy_n(in + samplesBefore(), count, rows_.data());
    for (int phase = 1; phase < decimation_; ++phase) {
        kernels::filter(in, taps_.data() + phase * tapCount_, tapCount_, count,
                        rows_.data() + phase * rowLength_);
    }
    kernels::interleaveRows(rows_.data(), rowLength_, decimation_, count, out);
}

}  // namespace tonvale::timepitch
