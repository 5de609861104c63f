// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/Numbers.h"

#include <vector>

namespace tonvale::timepitch {

/// The last samples of every channel as straight pieces of memory, addressed by frame number.
///
/// Frames that were never written read as zero, those before the first one too. It is a ring that
/// holds every sample twice, one ring's length apart: any window shorter than the ring is straight,
/// and nothing moves once it is written.
/// @thread one at a time, but for at(): while one thread writes, another may read frames that were
///         committed before and are still kept; only constructing allocates
class InputHistory {
public:
    /// @param keptFrames     frames before the end that stay readable
    /// @param stepFrames     the most that are written at once
    /// @param silentFrames   frames beyond the end that may be read, as zeros
    InputHistory(unsigned channelCount, int keptFrames, int stepFrames, int silentFrames = 0);

    void clear() noexcept;
    [[nodiscard]] unsigned channelCount() const noexcept
    {
        return static_cast<unsigned>(channels_.size());
    }
    /// One past the last frame written.
    [[nodiscard]] Frames end() const noexcept { return end_; }
    /// Memory for up to `stepFrames` new frames of a channel; call commit(count) when all are
    /// filled.
    [[nodiscard]] float* tail(unsigned channel) noexcept
    {
        return channels_[channel].data() + slot(end_);
    }
    void commit(int count) noexcept;

    /// `frame` and those after it, up to the end and what may be read beyond.
    [[nodiscard]] const float* at(unsigned channel, Frames frame) const noexcept
    {
        return channels_[channel].data() + slot(frame);
    }

private:
    [[nodiscard]] std::ptrdiff_t slot(Frames frame) const noexcept
    {
        return frame - floorDivide(frame, size_) * size_;
    }

    int silent_;
    int size_;  ///< of the ring; each channel has twice as much
    Frames end_ = 0;
    std::vector<Array<float>> channels_;
};

}  // namespace tonvale::timepitch
