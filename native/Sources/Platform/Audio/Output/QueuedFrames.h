// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace tonvale {

/// A copy of the newest frames that were handed to a device, found again by their place in the
/// stream (frame 0 is the stream's first). Older frames are forgotten one by one.
/// @thread one at a time; nothing but resize() allocates
class QueuedFrames {
public:
    static constexpr std::uint32_t channelCount = 2;

    /// Holds `frameCount` frames from now on, all silent. Allocates only to grow.
    void resize(std::uint32_t frameCount);
    [[nodiscard]] std::uint32_t capacity() const noexcept { return capacity_; }

    /// Where the frames `first` and following lie, interleaved: as many of `frameCount` as lie in
    /// one piece, at least one if any.
    [[nodiscard]] std::span<float> piece(std::int64_t first, std::int64_t frameCount) noexcept;

    /// Silences `first` up to, but not including, `end`.
    void clear(std::int64_t first, std::int64_t end) noexcept;

    /// Lets the frames from `first` on fall from full level to silence at `silent`, which lasts up
    /// to, but not including, `end`.
    void fadeOut(std::int64_t first, std::int64_t silent, std::int64_t end) noexcept;

private:
    std::vector<float> samples_;
    std::uint32_t capacity_ = 0;
};

}  // namespace tonvale
