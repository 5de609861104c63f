// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <bit>

#include "Platform/Audio/TimePitch/OverlapRing.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

namespace tonvale::timepitch {

OverlapRing::OverlapRing(unsigned channelCount, int frames, int decimation)
    : channelCount_(channelCount)
    , decimation_(decimation)
    , size_(static_cast<std::int64_t>(std::bit_ceil(static_cast<unsigned>(frames / decimation))))
    , samples_(size_ * static_cast<std::ptrdiff_t>(channelCount))
{
}

void OverlapRing::add(unsigned channel, Frames position, const float* samples, const float* window,
                      int count) noexcept
{
    float* ring = channelStart(channel);
    const std::int64_t start = (position / decimation_) & (size_ - 1);
    const int straight = static_cast<int>(std::min<std::int64_t>(count, size_ - start));
    kernels::multiplyAdd(samples, window, straight, ring + start);
    kernels::multiplyAdd(samples + straight, window + straight, count - straight, ring);
}

void OverlapRing::read(unsigned channel, std::int64_t start, int count, float* out) const noexcept
{
    const float* ring = samples_.data() + static_cast<std::ptrdiff_t>(channel) * size_;
    const std::int64_t first = start & (size_ - 1);
    const int straight = static_cast<int>(std::min<std::int64_t>(count, size_ - first));
    std::copy_n(ring + first, straight, out);
    std::copy_n(ring, count - straight, out + straight);
}

void OverlapRing::erase(Frames position, int frameCount) noexcept
{
    const std::int64_t start = (position / decimation_) & (size_ - 1);
    const int count = frameCount / decimation_;
    const int straight = static_cast<int>(std::min<std::int64_t>(count, size_ - start));
    for (unsigned channel = 0; channel < channelCount_; ++channel) {
        std::fill_n(channelStart(channel) + start, straight, 0.0F);
        std::fill_n(channelStart(channel), count - straight, 0.0F);
    }
}

}  // namespace tonvale::timepitch
