// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tonvale {

/// The least of the last `windowLength` values of a stream of gains, in constant time on average.
/// Values that can still become the least wait in rising order (a monotonic queue).
/// @thread construction: CONTROL; the rest: WORKER, no allocation
class SlidingMinimum {
public:
    explicit SlidingMinimum(std::uint32_t windowLength);

    /// As after construction.
    void reset() noexcept { first_ = end_ = now_ = 0; }

    /// Appends a value of at most 1. @return the least of the window
    float push(float value) noexcept;

    /// As pushing 1 `count` times, for nothing.
    void pass(std::uint64_t count) noexcept { now_ += count; }

    /// Whether the next value alone decides: every other value of its window is 1.
    [[nodiscard]] bool isAtRest() const noexcept;

private:
    struct Candidate {
        float value;
        std::uint64_t time;
    };

    [[nodiscard]] Candidate& at(std::uint64_t place) noexcept
    {
        return ring_[place % ring_.size()];
    }

    std::vector<Candidate> ring_;
    std::uint64_t first_ =
        0;  // places count up for ever; modulo the ring's size they name an index
    std::uint64_t end_ = 0;
    std::uint64_t now_ = 0;
};

}  // namespace tonvale
