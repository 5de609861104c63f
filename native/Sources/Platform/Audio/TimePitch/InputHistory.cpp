// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>

#include "Platform/Audio/TimePitch/InputHistory.h"

namespace tonvale::timepitch {

InputHistory::InputHistory(unsigned channelCount, int keptFrames, int stepFrames, int silentFrames)
    : silent_(silentFrames)
    , size_(keptFrames + stepFrames + silentFrames)
{
    channels_.reserve(channelCount);
    for (unsigned channel = 0; channel < channelCount; ++channel) {
        channels_.emplace_back(2 * size_);
    }
}

void InputHistory::clear() noexcept
{
    for (Array<float>& samples : channels_) {
        samples.clear();
    }
    end_ = 0;
}

void InputHistory::commit(int count) noexcept
{
    const std::ptrdiff_t begin = slot(end_);
    const std::ptrdiff_t split = std::min<std::ptrdiff_t>(begin + count, size_);
    end_ += count;
    const std::ptrdiff_t unwritten = slot(end_);
    const std::ptrdiff_t wrapped = std::max<std::ptrdiff_t>(0, unwritten + silent_ - size_);
    for (Array<float>& samples : channels_) {
        float* first = samples.data();
        float* second = first + size_;
        std::copy(first + begin, first + split, second + begin);
        std::copy(first + split, first + begin + count, first);
        for (float* copy : {first, second}) {
            std::fill_n(copy + unwritten, silent_ - wrapped, 0.0F);
            std::fill_n(copy, wrapped, 0.0F);
        }
    }
}

}  // namespace tonvale::timepitch
