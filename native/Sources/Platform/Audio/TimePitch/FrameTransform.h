// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/LayerDesign.h"
#include "Platform/Audio/TimePitch/RealFft.h"

namespace tonvale::timepitch {

/// Window and FFT of one layer's frames.
///
/// The frame is rotated so that the phase centre is sample 0 of the FFT: a partial then has the
/// same phase on all bins of its peak.
/// @thread WORKER, one at a time; only constructing allocates
class FrameTransform {
public:
    explicit FrameTransform(const LayerDesign& design);

    /// @param samples          the frame at the layer's own rate
    /// @param window           one factor per sample
    /// @param real, imaginary  the stored bins
    /// @param power            their squared magnitudes are added to it
    void forward(const float* samples, const float* window, float* real, float* imaginary,
                 float* power) noexcept;

private:
    const LayerDesign& design_;
    RealFft fft_;
};

}  // namespace tonvale::timepitch
