// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"
#include "Platform/Audio/TimePitch/SpectrumFrame.h"

#include <cstdint>

namespace tonvale::timepitch {

/// Finds the peaks of a frame and follows them from frame to frame.
///
/// A peak is a bin whose power exceeds its two neighbours on both sides; the bins between two
/// valleys are its region and later move as one (identity phase locking: Laroche and Dolson,
/// "Improved phase vocoder time-scale modification of audio", 1999). How far a partial's phase
/// advances in one hop is measured, not assumed: the angle of X_m[k] conj X_(m-1)[k'], where k' is
/// the maximum of the frame before that k climbs to, unwrapped around the advance of the bins.
/// Channels are summed before the angle is taken, so they share every decision.
/// @thread WORKER, one at a time
class PeakTracker {
public:
    PeakTracker(const LayerDesign& design, unsigned channelCount);

    /// Fills peaks (bins, regions, valleys) and dcEnd from the power of `frame`.
    void find(SpectrumFrame& frame) noexcept;

    /// Connects two neighbouring frames: advanceAfter of `before`, previousBin and advanceBefore
    /// of `frame`.
    void link(SpectrumFrame& before, SpectrumFrame& frame) noexcept;

    /// The local maximum of `power` that bin `start` (of a peak with `peakPower`) leads to in a
    /// few upward steps; `start` itself when that is at an end or 12 dB louder, so another partial.
    [[nodiscard]] static int climb(const Array<float>& power, int start, float peakPower) noexcept;

private:
    void collect(SpectrumFrame& frame, int begin, int end) noexcept;
    void findRegions(SpectrumFrame& frame) const noexcept;
    void followOn(const SpectrumFrame& frame, SpectrumFrame& before) noexcept;
    void followBack(const SpectrumFrame& before, SpectrumFrame& frame) noexcept;
    void prepare(int slot, const SpectrumFrame& before, int binBefore, const SpectrumFrame& frame,
                 int bin) noexcept;
    [[nodiscard]] float advance(int slot, int binSum, int ownBin) const noexcept;

    const LayerDesign& design_;
    unsigned channelCount_;
    float largestDeviation_;
    Array<std::uint8_t> flags_;
    Array<float> halfBinAdvance_;  ///< expected advance by the sum of two stored bins, radians
    Array<float> wrappedAdvance_;  ///< the same, wrapped to one turn
    Array<int> sourceOf_;          ///< by bin: which bin of the frame before climbed here, -1 none
    Array<float> advanceTo_;       ///< by bin: the advance measured on the way
    Array<int> target_;            ///< by peak: the bin it climbed to
    Array<float> crossReal_;
    Array<float> crossImaginary_;
    Array<float> angle_;
};

}  // namespace tonvale::timepitch
