// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/CutFrame.h"
#include "Platform/Audio/TimePitch/InputHistory.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"
#include "Platform/Audio/TimePitch/Onset.h"
#include "Platform/Audio/TimePitch/OnsetSplit.h"
#include "Platform/Audio/TimePitch/SpectrumFrame.h"

#include <cstdint>

namespace tonvale::timepitch {

/// Divides a frame at its onsets into what is heard as ever and what goes through the gate.
///
/// With X the spectrum of the frame, X_c and X_n those cut at the last onset before it and at the
/// next one (X_n = X where there is none), and g the old share of a bin (OnsetSplit):
///
///     sustained = g X + (1 - g) X_c       (X_n where there is no onset before)
///     hit       = (1 - g) (X_n - X_c)
///
/// So the bins that sound on through the onsets pass whole; of the others, what lies before the
/// first onset passes too, and what follows the next one is left to the frames after it.
/// @thread WORKER, one at a time; only constructing allocates
class FrameParts {
public:
    FrameParts(const LayerDesign& design, unsigned channelCount);

    void reset() noexcept;
    /// Analyses frame `number` cut at its onsets. divide() does it where it was not done before.
    /// @param input  at the layer's own rate
    void cut(std::int64_t number, const OnsetContext& onsets, const InputHistory& input) noexcept;
    /// Decides for frame `number`.
    /// @param weights  band weight per stored bin; must stay until the parts are made
    void divide(const FrameHistory& frames, std::int64_t number, const OnsetContext& onsets,
                const Array<float>& weights, const InputHistory& input) noexcept;

    /// Writes the active bins of a part (and those from 0 where the layer carries DC), weighed.
    void makeSustained(const SpectrumFrame& frame, ChannelSpectra& out) const noexcept;
    void makeHit(const SpectrumFrame& frame, ChannelSpectra& out) const noexcept;

private:
    using Combine = void (*)(const float* bins, const float* factors, int count, float* out);
    void weigh(const ChannelSpectra& spectra, const Array<float>& weights, Combine combine,
               ChannelSpectra& out) const noexcept;

    const LayerDesign& design_;
    unsigned channelCount_;
    OnsetSplit split_;
    CutFrame beforeCurrent_;
    CutFrame beforeNext_;
    OnsetContext onsets_;
    const Array<float>* weights_ = nullptr;
    Array<float> oldWeights_;
    Array<float> newWeights_;
};

}  // namespace tonvale::timepitch
