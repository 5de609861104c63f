// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioPCMBuffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace tonvale {

using Samples = std::vector<std::vector<float>>;  ///< channel after channel

/// Reads frames [start, end) in blocks. @param reader  an AudioFileReader or a MusicStream
template <typename Reader>
Samples readFrames(Reader& reader, std::int64_t start, std::int64_t end, std::uint32_t blockSize)
{
    Samples all(reader.format().channelCount);
    const auto buffer = AudioPCMBuffer::create(reader.format(), blockSize);
    for (std::int64_t frame = start; frame < end;) {
        const auto wanted =
            static_cast<std::uint32_t>(std::min<std::int64_t>(blockSize, end - frame));
        reader.read(frame, *buffer, wanted);
        const std::uint32_t count = buffer->frameLength();
        EXPECT_EQ(count, std::min<std::int64_t>(wanted, reader.length() - frame));
        if (count == 0) {
            break;
        }
        for (std::uint32_t index = 0; index < all.size(); ++index) {
            const auto samples = buffer->channel(index).first(count);
            all[index].insert(all[index].end(), samples.begin(), samples.end());
        }
        frame += count;
    }
    return all;
}

template <typename Reader>
Samples readAll(Reader& reader, std::uint32_t blockSize = 4096)
{
    return readFrames(reader, 0, reader.length(), blockSize);
}

/// The largest difference between `part` and the frames of `whole` from `start` on.
inline float largestDifference(const Samples& part, const Samples& whole, std::int64_t start)
{
    float largest = 0;
    for (std::size_t channel = 0; channel < part.size(); ++channel) {
        const float* const expected = whole[channel].data() + start;
        for (std::size_t frame = 0; frame < part[channel].size(); ++frame) {
            largest = std::max(largest, std::fabs(part[channel][frame] - expected[frame]));
        }
    }
    return largest;
}

}  // namespace tonvale
