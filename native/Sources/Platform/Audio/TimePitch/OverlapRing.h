// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"
#include "Platform/Audio/TimePitch/Numbers.h"

namespace tonvale::timepitch {

/// Adds up the frames of one layer at the layer's own rate, for all channels.
/// @thread WORKER, one at a time; only constructing allocates
class OverlapRing {
public:
    /// @param frames  of the song that must fit between the oldest kept and the newest written
    OverlapRing(unsigned channelCount, int frames, int decimation);

    void clear() noexcept { samples_.clear(); }
    /// Adds `samples` times `window` at `position` (a multiple of the decimation; frames).
    void add(unsigned channel, Frames position, const float* samples, const float* window,
             int count) noexcept;
    /// Copies `count` samples of the low rate, the first at low-rate position `start`.
    void read(unsigned channel, std::int64_t start, int count, float* out) const noexcept;
    /// Zeroes [position, position + frameCount) for the ring's next turn.
    void erase(Frames position, int frameCount) noexcept;

private:
    [[nodiscard]] float* channelStart(unsigned channel) noexcept
    {
        return samples_.data() + static_cast<std::ptrdiff_t>(channel) * size_;
    }

    unsigned channelCount_;
    int decimation_;
    std::int64_t size_;  ///< a power of two
    Array<float> samples_;
};

}  // namespace tonvale::timepitch
