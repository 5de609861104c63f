// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/FrameTransform.h"
#include "Platform/Audio/TimePitch/InputHistory.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"
#include "Platform/Audio/TimePitch/SpectrumFrame.h"

#include <cstdint>
#include <limits>

namespace tonvale::timepitch {

/// A second analysis of a frame that holds an onset, with the input faded out before the onset: the
/// spectrum of what had sounded until then, without any of the hit.
///
///     X_cut[k] = sum over n of wa(n) x(n) c(n) exp(-i ...),  c = 1 ... 0 raised cosine of 1.5 ms
///
/// The rest, X - X_cut, is the spectrum of the hit without what was before.
/// @thread WORKER, one at a time; only constructing allocates
class CutFrame {
public:
    CutFrame(const LayerDesign& design, unsigned channelCount);

    void reset() noexcept;
    /// Analyses frame `number` up to `end` (frames of the song; nothing at or after it is heard),
    /// unless that is what was analysed last: so it may be done ahead of time.
    /// @param input  at the layer's own rate, up to the end of the frame's window
    void analyse(std::int64_t number, Frames end, const InputHistory& input) noexcept;

    /// Stored bins, as those of SpectrumFrame.
    [[nodiscard]] const ChannelSpectra& spectra() const noexcept { return spectra_; }

private:
    static constexpr std::int64_t noFrame = std::numeric_limits<std::int64_t>::min();

    void computeWindow(Frames framesKept) noexcept;

    const LayerDesign& design_;
    unsigned channelCount_;
    FrameTransform transform_;
    std::int64_t number_ = noFrame;  ///< what was analysed last
    Frames end_ = 0;
    double fadeSamples_;  ///< at the layer's own rate
    Array<float> window_;
    Array<float> power_;
    ChannelSpectra spectra_;
};

}  // namespace tonvale::timepitch
