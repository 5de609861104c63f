// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Geometry.h"
#include "Platform/Audio/TimePitch/InputHistory.h"
#include "Platform/Audio/TimePitch/OctaveDecimator.h"

#include <vector>

namespace tonvale::timepitch {

/// The last input at the song's rate, its half, its quarter ...: one history for every rate that
/// layers work at.
/// @thread WORKER, one at a time, but what was taken may be read by another (InputHistory); only
///         constructing allocates
class OctaveInput {
public:
    /// @param keptFrames  frames (of the song) before the end that stay readable
    OctaveInput(const Geometry& geometry, unsigned channelCount, int keptFrames);

    void clear() noexcept;
    /// Takes the next geometry.block frames.
    /// @param channels  one pointer per channel
    void advance(const float* const* channels) noexcept;

    /// One past the last frame taken, at the song's rate.
    [[nodiscard]] Frames end() const noexcept { return octaves_.front().end(); }
    /// The input at the song's rate.
    [[nodiscard]] const InputHistory& whole() const noexcept { return octaves_.front(); }
    /// The input at the layer's own rate. What the decimator could not deliver yet (a few samples)
    /// is zero.
    [[nodiscard]] const InputHistory& of(const LayerGeometry& layer) const noexcept;

private:
    int block_;
    OctaveDecimator decimator_;
    std::vector<InputHistory> octaves_;
};

}  // namespace tonvale::timepitch
