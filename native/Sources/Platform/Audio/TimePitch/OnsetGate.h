// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/AudibleSpan.h"
#include "Platform/Audio/TimePitch/Geometry.h"
#include "Platform/Audio/TimePitch/Onset.h"
#include "Platform/Audio/TimePitch/OnsetDetector.h"

#include <span>

namespace tonvale::timepitch {

/// Lets the new part of an onset sound from the onset on, and not before or beyond it.
///
/// The frames around a hit all contain it, so overlap-adding them would smear it over +-R. Their
/// new parts are added up apart and multiplied by a gate that opens at the onset (1.5 ms raised
/// cosine before it), divided by the sum of the windows of the frames that went in: together a
/// window whose attack side ends at the onset. On top the power in each 1.5 ms may not exceed ten
/// times the input's in the same band and time, which cuts the ring of dry clicks.
/// @thread WORKER, one at a time; only constructing allocates
class OnsetGate {
public:
    OnsetGate(const LayerGeometry& layer, const SpanGain& spanGain, int block);

    /// Applies gate, cover and limit to a piece of the new part and adds it to the output.
    /// @param span      of the frames that went in
    /// @param limit     the gain the limiter ended the block before with; updated
    /// @param samples   the frames of the piece, per channel; changed
    /// @param output    the whole block
    void process(const BlockPart& part, Frames onset, const AudibleSpan& span,
                 const OnsetDetector& envelope, float& limit, std::span<float* const> samples,
                 std::span<float* const> output) noexcept;

    /// Frames before the onset where the gate begins to open.
    [[nodiscard]] Frames fadeFrames() const noexcept { return fade_; }

private:
    void computeGate(const BlockPart& part, Frames onset, const AudibleSpan& span) noexcept;
    [[nodiscard]] float limitFor(Frames from, Frames to, float energy,
                                 const OnsetDetector& envelope) const noexcept;

    const SpanGain& spanGain_;
    int layer_;
    int block_;
    Frames release_;
    Frames fade_;
    Frames hold_;
    Array<float> gains_;
};

}  // namespace tonvale::timepitch
