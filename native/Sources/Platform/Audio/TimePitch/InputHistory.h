// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/Numbers.h"

#include <vector>

namespace tonvale::timepitch {

/// The last samples of every channel as one straight piece of memory, addressed by frame number.
///
/// Frames that were never written read as zero, those before the first one too. To stay straight
/// without moving memory at each step it holds twice what it must keep.
/// @thread one at a time; only constructing allocates
class InputHistory {
public:
    /// @param keptFrames     frames before the end that stay readable
    /// @param aheadFrames    frames beyond the end that may be read (as zeros) or written at once
    InputHistory(unsigned channelCount, int keptFrames, int aheadFrames);

    void clear() noexcept;
    [[nodiscard]] unsigned channelCount() const noexcept
    {
        return static_cast<unsigned>(channels_.size());
    }
    /// One past the last frame written.
    [[nodiscard]] Frames end() const noexcept { return end_; }
    /// Memory for `count` new frames of a channel; call commit(count) when all are filled.
    [[nodiscard]] float* tail(unsigned channel) noexcept
    {
        return channels_[channel].data() + (end_ - base_);
    }
    void commit(int count) noexcept;

    [[nodiscard]] const float* at(unsigned channel, Frames frame) const noexcept
    {
        return channels_[channel].data() + (frame - base_);
    }

private:
    void slide() noexcept;

    int kept_;
    int ahead_;
    int capacity_;
    Frames base_ = 0;
    Frames end_ = 0;
    std::vector<Array<float>> channels_;
};

}  // namespace tonvale::timepitch
