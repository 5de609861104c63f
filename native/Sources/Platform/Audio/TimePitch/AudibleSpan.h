// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/LayerWindows.h"
#include "Platform/Audio/TimePitch/Numbers.h"

#include <limits>

namespace tonvale::timepitch {

/// When a run of frames is heard: frames with references firstFrame ... lastFrame, from `start`
/// until `end`. "Open" ends lie out of reach.
struct AudibleSpan {
    static constexpr Frames openBegin = std::numeric_limits<Frames>::min() / 4;
    static constexpr Frames openEnd = std::numeric_limits<Frames>::max() / 4;

    Frames firstFrame = openBegin;
    Frames lastFrame = openEnd;
    Frames start = openBegin;
    Frames end = openEnd;

    [[nodiscard]] bool startsHere() const noexcept { return start != openBegin; }
    [[nodiscard]] bool endsHere() const noexcept { return end != openEnd; }
};

/// Gains that turn the overlap-added frames of an AudibleSpan into a signal of full level with
/// soft ends.
///
/// Where frames are missing (before the first, after the last) the sum of their windows is below 1;
/// dividing by it restores the level. The ends are integrated Hann windows around `start` and
/// `end`. Old and new parts meet in phase (PhaseTracker), so amplitudes must add up to 1, not
/// powers.
/// @thread constructing: CONTROL or WORKER (allocates); the rest: ANY
class SpanGain {
public:
    SpanGain(const LayerGeometry& geometry, const LayerWindows& windows);

    /// Whether all of [position, position + count) is heard at full level without any gain.
    [[nodiscard]] bool isPlain(const AudibleSpan& span, Frames position, int count) const noexcept;
    /// Whether nothing of [position, position + count) is heard.
    [[nodiscard]] bool isSilent(const AudibleSpan& span, Frames position, int count) const noexcept;
    /// The gains for [position, position + count), both parts together.
    void compute(const AudibleSpan& span, Frames position, int count, float* gains) const noexcept;
    /// The factor for missing frames alone.
    void computeCover(Frames firstFrame, Frames lastFrame, Frames position, int count,
                      float* gains) const noexcept;

private:
    [[nodiscard]] float fade(const AudibleSpan& span, Frames position) const noexcept;
    [[nodiscard]] double rise(Frames frame) const noexcept;

    const LayerWindows& windows_;
    Frames hop_;
    Frames release_;
    Frames halfFade_;     ///< frames to each side of `start` and `end` in which the ends are faded
    Array<double> rise_;  ///< a soft start, two half fades long
};

}  // namespace tonvale::timepitch
