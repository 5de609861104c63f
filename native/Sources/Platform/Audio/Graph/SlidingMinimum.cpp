// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/SlidingMinimum.h"

namespace tonvale {

SlidingMinimum::SlidingMinimum(std::uint32_t windowLength) : ring_(windowLength) {}

float SlidingMinimum::push(float value) noexcept
{
    while (end_ != first_ && at(first_).time + ring_.size() <= now_) {
        ++first_;
    }
    while (end_ != first_ && at(end_ - 1).value >= value) {
        --end_;
    }
    at(end_++) = {value, now_++};
    return at(first_).value;
}

bool SlidingMinimum::isAtRest() const noexcept
{
    // The youngest candidate below 1 is the last but for a 1 behind it.
    for (std::uint64_t place = end_; place != first_; --place) {
        const Candidate& youngest = ring_[(place - 1) % ring_.size()];
        if (youngest.value < 1.0F) {
            return youngest.time + ring_.size() <= now_;
        }
    }
    return true;
}

}  // namespace tonvale
