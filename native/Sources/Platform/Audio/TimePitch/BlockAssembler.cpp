// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>

#include "Platform/Audio/TimePitch/BlockAssembler.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

namespace tonvale::timepitch {

BlockAssembler::BlockAssembler(unsigned channelCount, int block) : block_(block)
{
    for (unsigned channel = 0; channel < channelCount; ++channel) {
        samples_.emplace_back(block);
        pointers_.push_back(samples_.back().data());
    }
}

int BlockAssembler::push(std::span<const float* const> channels, unsigned offset,
                         unsigned count) noexcept
{
    const int taken = static_cast<int>(std::min(count, static_cast<unsigned>(block_ - filled_)));
    for (std::size_t channel = 0; channel < samples_.size(); ++channel) {
        kernels::sanitise(channels[channel] + offset, taken, samples_[channel].data() + filled_);
    }
    filled_ += taken;
    return taken;
}

}  // namespace tonvale::timepitch
