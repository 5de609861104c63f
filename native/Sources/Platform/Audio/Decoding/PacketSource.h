// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Decoding/FFmpeg.h"
#include "Platform/Audio/Decoding/MusicExtent.h"

#include <cstdint>
#include <memory>

namespace tonvale {

class LocalInput;

/// The coded packets of a file's one song, in order, each stamped with its place.
/// A *tick* is the source's unit of time, tickDuration() seconds long.
/// @thread WORKER; one thread at a time
class PacketSource {
public:
    virtual ~PacketSource() = default;

    [[nodiscard]] virtual const AVCodecParameters& parameters() const noexcept = 0;
    [[nodiscard]] virtual AVRational tickDuration() const noexcept = 0;

    /// Whether packets carry exact stamps and seek() works. Otherwise every stamp is noTimeStamp,
    /// and a place is known only by decoding from the start and counting.
    [[nodiscard]] virtual bool hasExactStamps() const noexcept = 0;

    /// Fetches the next packet; its `pts` is the tick of its first decoded frame.
    /// @return false at the end, and where nothing more can be read from a damaged file
    /// @error PlatformError when the disk fails
    [[nodiscard]] virtual bool next(AVPacket& packet) = 0;

    /// Continues at a packet stamped `tick` or earlier, or at the first one.
    /// Only with hasExactStamps().
    /// @error PlatformError when the disk fails
    virtual void seek(std::int64_t tick) = 0;

    /// Continues at the first packet.
    /// @error PlatformError when the disk fails
    virtual void rewind() = 0;

    /// Continues at the first packet after anything has failed, also where the disk still does: it
    /// is told of again as soon as that is in the way.
    /// @error PlatformError when it is in the way already
    virtual void recover() { rewind(); }

    /// Where the music lies. May scan the packets, and may leave the source at any place.
    /// @error PlatformError when the disk fails
    [[nodiscard]] virtual MusicExtent extent(const DecodedFormat& format) = 0;
};

/// Recognises the file's format and finds its song.
/// @error PlatformError: unknown format, no sound in it, disk failure
[[nodiscard]] std::unique_ptr<PacketSource> makePacketSource(LocalInput& input);

}  // namespace tonvale
