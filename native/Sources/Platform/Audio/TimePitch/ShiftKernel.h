// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/Geometry.h"
#include "Platform/Audio/TimePitch/LayerWindows.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

namespace tonvale::timepitch {

/// A few complex taps that move a spectrum by a fraction of a bin and bend it as a chirp does.
///
/// A frame is to be multiplied in time by v(x) = exp(i (offset x + chirp (1 - cos x))) with
/// x = 2 pi (n - centre) / N; on bins that is a convolution. Of all convolutions with five taps
/// this takes the one nearest to v in the least-squares sense under the heard window p, so errors
/// where nothing is heard are free. (1 - cos x is the parabola x^2 / 2 that few taps can make.)
///
/// Overlapped frames of a steady tone add up without ripple only while p times the taps has no
/// component at the hop rate, N / H bins. p reaches N / R bins and the outer taps two more; where
/// that is too far, steady tones get the three inner taps, and all five serve the moving ones.
/// Measured: rounding to whole bins costs 8 ... 15 dB on moving tones, three taps for all cost
/// 1 ... 4 dB there, five taps for all 10 dB on steady ones.
/// @thread constructing: CONTROL or WORKER (allocates); taps(): ANY
class ShiftKernel {
public:
    ShiftKernel(const LayerGeometry& geometry, const LayerWindows& windows);

    /// Gives the kernels::tapCount taps as real, imaginary, real, ...: straight lines between the
    /// entries of a table with steps of 1/16 bin and 1/8 rad.
    /// @param offset  bins, -0.5 ... 0.5
    /// @param chirp   radians, -chirpLimit ... chirpLimit
    void taps(float offset, float chirp, float* out) const noexcept;

    static constexpr float chirpLimit = 1.5F;

private:
    static constexpr int offsetSteps = 16;
    static constexpr int offsetColumns = offsetSteps + 1;
    static constexpr int chirpStepsPerRadian = 8;
    static constexpr int chirpRows = 25;
    static constexpr int valuesPerEntry = kernels::tapValues;

    Array<float> table_;
};

}  // namespace tonvale::timepitch
