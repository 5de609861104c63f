// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"

#include <span>
#include <vector>

namespace tonvale::timepitch {

/// Collects the caller's frames into the engine's blocks and makes them safe: NaN and infinities
/// become silence, and nothing exceeds +-65536 (so that no power overflows).
/// @thread WORKER, one at a time; only constructing allocates
class BlockAssembler {
public:
    BlockAssembler(unsigned channelCount, int block);

    void reset() noexcept { filled_ = 0; }

    /// Takes up to `count` frames from `offset` on, not beyond the end of the block.
    /// @return the number taken
    int push(std::span<const float* const> channels, unsigned offset, unsigned count) noexcept;

    [[nodiscard]] bool isFull() const noexcept { return filled_ == block_; }
    /// Starts the next block; the samples stay readable until something is pushed.
    void startNext() noexcept { filled_ = 0; }
    [[nodiscard]] const float* const* channels() const noexcept { return pointers_.data(); }

private:
    int block_;
    int filled_ = 0;
    std::vector<Array<float>> samples_;
    std::vector<const float*> pointers_;
};

}  // namespace tonvale::timepitch
