// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/QueuedFrames.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tonvale {

void QueuedFrames::resize(std::uint32_t frameCount)
{
    samples_.assign(std::size_t{frameCount} * channelCount, 0.0F);
    capacity_ = frameCount;
}

std::span<float> QueuedFrames::piece(std::int64_t first, std::int64_t frameCount) noexcept
{
    const std::int64_t place = first % capacity_;
    const std::int64_t length = std::min(frameCount, capacity_ - place);
    return std::span(samples_).subspan(static_cast<std::size_t>(place) * channelCount,
                                       static_cast<std::size_t>(length) * channelCount);
}

void QueuedFrames::clear(std::int64_t first, std::int64_t end) noexcept
{
    first = std::max(first, end - capacity_);
    while (first < end) {
        const std::span<float> samples = piece(first, end - first);
        std::fill(samples.begin(), samples.end(), 0.0F);
        first += static_cast<std::int64_t>(samples.size()) / channelCount;
    }
}

void QueuedFrames::fadeOut(std::int64_t first, std::int64_t silent, std::int64_t end) noexcept
{
    const double step = std::numbers::pi / static_cast<double>(silent - first);
    for (std::int64_t frame = first; frame < silent; ++frame) {
        // Half a cosine has no corner at either end, so the ear finds no edge.
        const double gain = 0.5 + 0.5 * std::cos(step * static_cast<double>(frame - first + 1));
        for (float& sample : piece(frame, 1)) {
            sample *= static_cast<float>(gain);
        }
    }
    clear(silent, end);
}

}  // namespace tonvale
