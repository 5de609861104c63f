// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Decoding/FFmpeg.h"
#include "Platform/Audio/Decoding/MusicExtent.h"

#include <cstdint>
#include <optional>

namespace tonvale {

class LocalInput;
class PacketSource;

/// What an opened container tells of its music.
struct ContainerFacts {
    LocalInput& input;
    const AVInputFormat& format;
    const AVFormatContext* context;
    const AVStream& stream;
    AVRational tickDuration;  ///< seconds
    bool isLinear = false;    ///< PCM whose frames lie side by side from dataOffset on
    std::int64_t dataOffset = 0;
    int frameSize = 0;                    ///< bytes; with isLinear
    std::int64_t duration = noTimeStamp;  ///< ticks, as the header says
};

/// The extent in a container's own words.
struct HeaderExtent {
    std::int64_t start = 0;                ///< raw frames
    std::optional<std::int64_t> end = {};  ///< raw frames; nothing when the container does not
                                           ///< tell, or cannot be believed for its size
};

/// @error PlatformError when the disk fails
[[nodiscard]] HeaderExtent headerExtent(const ContainerFacts& facts, const DecodedFormat& format);

/// The end of the music by adding up all packets, without decoding them.
/// @param source  at its first packet; left at its end
/// @param fileSize  bytes; stamps that lie beyond all reason for it are passed over
/// @return raw frames                  @error PlatformError when the disk fails
[[nodiscard]] std::int64_t scanForEnd(PacketSource& source, std::int64_t fileSize,
                                      const DecodedFormat& format);

}  // namespace tonvale
