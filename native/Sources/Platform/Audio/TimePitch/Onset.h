// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Geometry.h"
#include "Platform/Audio/TimePitch/Numbers.h"

#include <array>
#include <cstddef>

namespace tonvale::timepitch {

/// The start of a hit: where its first sample is and which layers hear it.
struct Onset {
    static constexpr std::size_t largestLayerCount = 3;

    Frames position = 0;
    unsigned layers = 0;      ///< bit l: the energy of layer l's band rises
    std::int64_t number = 0;  ///< counts from 0 since the last reset
    /// Per layer: the part of the band's energy in the last frame before the onset that is left
    /// just before it, at most 1. Below 1 an earlier hit dies away in that frame, which must not
    /// pass for "old".
    std::array<float, largestLayerCount> remainder{1, 1, 1};

    [[nodiscard]] bool isIn(int layer) const noexcept { return (layers >> layer & 1U) != 0; }
};

/// The onsets that matter to one frame of one layer.
struct OnsetContext {
    const Onset* current = nullptr;  ///< the last one before the frame, within its window
    const Onset* next = nullptr;     ///< the first one after the frame, within its window

    [[nodiscard]] bool isPlain() const noexcept { return current == nullptr && next == nullptr; }
};

/// The onsets of the last few windows, in order.
/// @thread WORKER, one at a time; never allocates
class OnsetList {
public:
    static constexpr std::size_t capacity = 32;

    void clear() noexcept { count_ = 0; }
    [[nodiscard]] const Onset* begin() const noexcept { return onsets_.data(); }
    [[nodiscard]] const Onset* end() const noexcept { return onsets_.data() + count_; }
    /// The latest onset, or null.
    [[nodiscard]] Onset* last() noexcept;
    /// Adds an onset; drops the oldest when full.
    void add(const Onset& onset) noexcept;
    void forgetBefore(Frames position) noexcept;

    [[nodiscard]] OnsetContext around(const LayerGeometry& layer, Frames reference) const noexcept;
    /// Whether an onset of one of `layers` (bits) lies closer than `distance` to `position`.
    [[nodiscard]] bool isNear(Frames position, Frames distance, unsigned layers) const noexcept;

private:
    void drop(std::size_t count) noexcept;

    std::array<Onset, capacity> onsets_;
    std::size_t count_ = 0;
};

}  // namespace tonvale::timepitch
