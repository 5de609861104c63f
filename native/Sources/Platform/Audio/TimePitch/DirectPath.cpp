// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>

#include "Platform/Audio/TimePitch/DirectPath.h"

namespace tonvale::timepitch {

DirectPath::DirectPath(int block, unsigned channelCount)
    : block_(block)
    , channelCount_(channelCount)
    , fadeIn_(block)
{
    for (int i = 0; i < block; ++i) {
        fadeIn_[i] = static_cast<float>(raisedCosine((i + 0.5) / block));
    }
}

void DirectPath::reset(bool isOpen) noexcept
{
    isOpen_ = isOpen;
}

void DirectPath::process(const InputHistory& input, Frames position, bool wanted,
                         std::span<float* const> output) noexcept
{
    if (!isOpen_ && !wanted) {
        return;
    }
    for (unsigned channel = 0; channel < channelCount_; ++channel) {
        const float* direct = input.at(channel, position);
        float* out = output[channel];
        if (isOpen_ && wanted) {
            std::copy_n(direct, block_, out);
            continue;
        }
        const float* first = isOpen_ ? direct : out;
        const float* second = isOpen_ ? out : direct;
        for (int i = 0; i < block_; ++i) {
            out[i] = first[i] + fadeIn_[i] * (second[i] - first[i]);
        }
    }
    isOpen_ = wanted;
}

}  // namespace tonvale::timepitch
