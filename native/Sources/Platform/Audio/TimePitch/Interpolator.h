// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/Geometry.h"

namespace tonvale::timepitch {

/// Brings samples of a layer's own rate back to the song's rate: a Kaiser-windowed sinc, one set of
/// taps per phase; samples that exist at the low rate are copied.
/// @thread WORKER, one at a time; only constructing allocates
class Interpolator {
public:
    /// @param largestCount  samples of the low rate that one call may make room for
    Interpolator(const LayerGeometry& geometry, int largestCount);

    /// Samples of the low rate before and after the wanted ones that process() reads.
    [[nodiscard]] int samplesBefore() const noexcept { return tapCount_ / 2 - 1; }
    [[nodiscard]] int samplesAfter() const noexcept { return tapCount_ / 2 + 1; }

    /// @param in     sample samplesBefore() is the one at the place of out[0]
    /// @param count  samples of the low rate; `out` gets `decimation` times as many
    void process(const float* in, int count, float* out) noexcept;

private:
    int decimation_;
    int tapCount_;
    int rowLength_;
    Array<float> taps_;  ///< one row per phase
    Array<float> rows_;  ///< one row of output per phase
};

}  // namespace tonvale::timepitch
