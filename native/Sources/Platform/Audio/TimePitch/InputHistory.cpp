// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>

#include "Platform/Audio/TimePitch/InputHistory.h"

namespace tonvale::timepitch {

InputHistory::InputHistory(unsigned channelCount, int keptFrames, int aheadFrames)
    : kept_(keptFrames)
    , ahead_(aheadFrames)
    , capacity_(2 * (keptFrames + aheadFrames))
{
    channels_.reserve(channelCount);
    for (unsigned channel = 0; channel < channelCount; ++channel) {
        channels_.emplace_back(capacity_);
    }
    clear();
}

void InputHistory::clear() noexcept
{
    for (Array<float>& samples : channels_) {
        samples.clear();
    }
    end_ = 0;
    base_ = -kept_;
}

void InputHistory::commit(int count) noexcept
{
    end_ += count;
    if (end_ + ahead_ - base_ > capacity_) {
        slide();
    }
}

void InputHistory::slide() noexcept
{
    const Frames start = end_ - kept_;
    for (Array<float>& samples : channels_) {
        float* kept = std::copy(samples.data() + (start - base_), samples.data() + (end_ - base_),
                                samples.data());
        std::fill(kept, samples.end(), 0.0F);
    }
    base_ = start;
}

}  // namespace tonvale::timepitch
