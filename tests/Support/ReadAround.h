// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioPCMBuffer.h"
#include "Platform/Foundation/Precondition.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>

namespace tonvale::test {

/// Reads from the start and from elsewhere, as playing and skipping do. What a reader promises of
/// any song must hold of a damaged one too: a broken promise aborts.
/// @param reader  an AudioFileReader or a MusicStream
/// @param place   where to skip to, in frames; what exceeds the song's length counts from its start
/// @error PlatformError when the disk fails
template <typename Reader>
void readAround(Reader& reader, std::uint32_t place)
{
    constexpr std::uint32_t blockSize = 1000;
    constexpr std::int64_t mostFrames = 200 * std::int64_t{blockSize};  // headers may tell hours
    const std::int64_t length = reader.length();
    precondition(length >= 0 && length <= std::numeric_limits<std::uint32_t>::max());
    const auto buffer = AudioPCMBuffer::create(reader.format(), blockSize);
    precondition(buffer != nullptr);

    const auto readFrom = [&](std::int64_t start) {
        reader.read(start, *buffer, blockSize);
        precondition(buffer->frameLength() == std::min<std::int64_t>(blockSize, length - start));
    };
    for (std::int64_t start = 0; start <= std::min(length, mostFrames); start += blockSize) {
        readFrom(start);
    }
    const std::array<std::int64_t, 4> places = {length / 2, place % (length + 1),
                                                std::max<std::int64_t>(length - 1, 0), 0};
    std::ranges::for_each(places, readFrom);
}

}  // namespace tonvale::test
