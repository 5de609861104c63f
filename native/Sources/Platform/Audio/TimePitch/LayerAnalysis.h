// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/FrameTransform.h"
#include "Platform/Audio/TimePitch/InputHistory.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"
#include "Platform/Audio/TimePitch/PeakTracker.h"
#include "Platform/Audio/TimePitch/SpectrumFrame.h"

namespace tonvale::timepitch {

/// Turns the input of one layer into frames: window, FFT, power, peaks and their advances.
/// @thread WORKER, one at a time
class LayerAnalysis {
public:
    LayerAnalysis(const LayerDesign& design, unsigned channelCount);

    void reset() noexcept { frames_.clear(); }

    /// Analyses frame `number` (reference at number times hop frames of the song).
    /// @param input  at the layer's own rate, up to the end of the frame's window; what the
    ///               decimator could not deliver yet (a few samples, window below -60 dB) is zero
    void analyse(std::int64_t number, const InputHistory& input) noexcept;

    [[nodiscard]] const FrameHistory& frames() const noexcept { return frames_; }

private:
    const LayerDesign& design_;
    unsigned channelCount_;
    FrameTransform transform_;
    PeakTracker tracker_;
    FrameHistory frames_;
};

}  // namespace tonvale::timepitch
