// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/Geometry.h"
#include "Platform/Audio/TimePitch/LayerWindows.h"
#include "Platform/Audio/TimePitch/ShiftKernel.h"

namespace tonvale::timepitch {

/// Everything about one layer that never changes while it runs; analysis and synthesis share it.
///
/// Of the FFT's bins only those around the band are stored; a *stored bin* k is FFT bin
/// firstBin + k. Peaks own stored bins, output is made from those in [activeBegin, activeEnd).
/// @thread constructing: CONTROL or WORKER (allocates); reading: ANY
struct LayerDesign {
    explicit LayerDesign(const LayerGeometry& layerGeometry);

    LayerGeometry geometry;
    LayerWindows windows;
    ShiftKernel kernel;
    Array<float> bandWeights;  ///< per FFT bin
    int firstBin = 0;
    int binCount = 0;
    int activeBegin = 0;
    int activeEnd = 0;
    float silencePower = 0;    ///< power of a bin that counts as nothing (about -160 dBFS)
    double advancePerBin = 0;  ///< radians per hop and FFT bin

    /// Phase advance over one hop of a sinusoid on stored bin k, radians (bins may be halves).
    [[nodiscard]] double expectedAdvance(double storedBin) const noexcept
    {
        return advancePerBin * (storedBin + firstBin);
    }
    /// Stored bin nearest to stored bin `k` of `other`, not beyond the ends.
    [[nodiscard]] int nearestBin(const LayerDesign& other, int k) const noexcept;
    /// The lowest layer also carries DC and whatever is below the first peak.
    [[nodiscard]] bool carriesDc() const noexcept { return !geometry.lower.exists(); }
};

}  // namespace tonvale::timepitch
