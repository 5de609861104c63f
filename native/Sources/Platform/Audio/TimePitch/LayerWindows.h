// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/Geometry.h"

namespace tonvale::timepitch {

/// The windows of one layer. With x = frames from the reference, A = attack, R = release:
///
///     analysis   wa(x) = cos^2(pi x / 2A) for x < 0, cos^2(pi x / 2R) for x >= 0
///     product    p(x)  = cos^4(pi x / 2R), |x| < R: what a frame contributes to the output
///     synthesis  ws    = p / wa
///
/// The long attack side gives frequency resolution without latency: only +-R is ever heard.
/// p adds up to 1 over the frames of one layer (Hann windows overlapped four times, squared).
/// @thread constructing and lagWindow(): CONTROL or WORKER (they allocate); the rest: ANY
class LayerWindows {
public:
    explicit LayerWindows(const LayerGeometry& geometry);

    /// wa at the layer's own rate, times the decimation; index 0 is the first frame of the window.
    [[nodiscard]] const Array<float>& analysis() const noexcept { return analysis_; }
    /// ws at the layer's own rate for x = -R ... R, with the factor that makes
    /// analysis -> FFT -> inverse FFT -> synthesis -> overlap-add the identity.
    [[nodiscard]] const Array<float>& synthesis() const noexcept { return synthesis_; }
    /// p at the song's rate for x = -R ... R, adding up to 1 over frames.
    [[nodiscard]] const Array<float>& product() const noexcept { return product_; }

    /// Frames from the start of the window to where phases are measured: the analysis is "zero
    /// phase" there. It lies 0.7 of the way from the reference to the centroid of wa, because an
    /// asymmetric window sees a moving tone where its weight is (0.5 ... 0.7 measured best).
    [[nodiscard]] int phaseCentre() const noexcept { return phaseCentre_; }
    /// phaseCentre() relative to the reference, frames (0 or negative).
    [[nodiscard]] int phaseOffset() const noexcept { return phaseCentre_ - attack_; }
    /// 1 - <cos x> under wa, x = 2 pi (n - centre) / N: by how much a chirp of unit strength bends
    /// the phase that is measured at a peak.
    [[nodiscard]] double phaseBend() const noexcept { return phaseBend_; }

    /// rho(lag) = sum of wa(n - lag) ws(n) over n, divided by the sum of p; symmetric in lag.
    /// It is what the windows do to the impulse response of a factor on the bins.
    [[nodiscard]] Array<double> lagWindow(int largestLag) const;

private:
    void placePhaseCentre(const LayerGeometry& geometry);

    int attack_;
    int size_;
    int phaseCentre_ = 0;
    double phaseBend_ = 0;
    double productSum_ = 0;
    Array<double> fullAnalysis_;
    Array<double> fullSynthesis_;
    Array<float> analysis_;
    Array<float> synthesis_;
    Array<float> product_;
};

}  // namespace tonvale::timepitch
