// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>

#include "Platform/Audio/TimePitch/DirectPath.h"

namespace tonvale::timepitch {

DirectPath::DirectPath(const Geometry& geometry, unsigned channelCount)
    : geometry_(geometry)
    , input_(channelCount, geometry.latency(), geometry.block)
    , fadeIn_(geometry.block)
{
    for (int i = 0; i < geometry.block; ++i) {
        fadeIn_[i] = static_cast<float>(raisedCosine((i + 0.5) / geometry.block));
    }
}

void DirectPath::reset(bool isOpen) noexcept
{
    input_.clear();
    isOpen_ = isOpen;
}

void DirectPath::process(const float* const* input, bool wanted,
                         std::span<float* const> output) noexcept
{
    const int block = geometry_.block;
    for (unsigned channel = 0; channel < input_.channelCount(); ++channel) {
        std::copy_n(input[channel], block, input_.tail(channel));
    }
    input_.commit(block);
    if (!isOpen_ && !wanted) {
        return;
    }
    const Frames position = input_.end() - geometry_.latency();
    for (unsigned channel = 0; channel < input_.channelCount(); ++channel) {
        const float* direct = input_.at(channel, position);
        float* out = output[channel];
        if (isOpen_ && wanted) {
            std::copy_n(direct, block, out);
            continue;
        }
        const float* first = isOpen_ ? direct : out;
        const float* second = isOpen_ ? out : direct;
        for (int i = 0; i < block; ++i) {
            out[i] = first[i] + fadeIn_[i] * (second[i] - first[i]);
        }
    }
    isOpen_ = wanted;
}

}  // namespace tonvale::timepitch
