// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>

#include "Platform/Audio/TimePitch/DirectPath.h"

namespace tonvale::timepitch {

DirectPath::DirectPath(int block, unsigned channelCount)
    : channelCount_(channelCount)
    , fadeIn_(block)
{
    for (int i = 0; i < block; ++i) {
        fadeIn_[i] = static_cast<float>(raisedCosine((i + 0.5) / block));
    }
}

void DirectPath::reset(bool isOpen) noexcept
{
    wasOpen_ = isOpen_ = isOpen;
}

void DirectPath::begin(bool wanted) noexcept
{
    wasOpen_ = isOpen_;
    isOpen_ = wanted;
}

void DirectPath::process(const InputHistory& input, const BlockPart& part,
                         std::span<float* const> output) const noexcept
{
    if (!wasOpen_ && !isOpen_) {
        return;
    }
    for (unsigned channel = 0; channel < channelCount_; ++channel) {
        const float* direct = input.at(channel, part.position());
        float* out = output[channel] + part.begin;
        if (wasOpen_ && isOpen_) {
            std::copy_n(direct, part.size(), out);
            continue;
        }
        const float* first = wasOpen_ ? direct : out;
        const float* second = wasOpen_ ? out : direct;
        for (int i = 0; i < part.size(); ++i) {
            out[i] = first[i] + fadeIn_[part.begin + i] * (second[i] - first[i]);
        }
    }
}

}  // namespace tonvale::timepitch
