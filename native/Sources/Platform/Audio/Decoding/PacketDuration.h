// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Decoding/FFmpeg.h"
#include "Platform/Audio/Decoding/MusicExtent.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

struct AVVorbisParseContext;

namespace tonvale {

/// Tells how many frames packets decode to, without decoding them.
/// @thread WORKER; one thread at a time
class PacketDuration {
public:
    PacketDuration(const AVCodecParameters& parameters, const DecodedFormat& format);

    /// @param packet  the packets of one stream, in order (Vorbis packets overlap)
    /// @return frames; nothing when it cannot be told
    [[nodiscard]] std::optional<std::int64_t> framesOf(const AVPacket& packet);

private:
    struct VorbisParserDeleter {
        void operator()(AVVorbisParseContext* parser) const noexcept;
    };

    const AVCodecParameters& parameters_;
    DecodedFormat format_;
    std::unique_ptr<AVVorbisParseContext, VorbisParserDeleter> vorbisParser_;
    bool isFirst_ = true;
};

/// Frames that a packet decodes to as the packet itself tells, for the codecs whose packets differ
/// in length and do: Opus, FLAC, ALAC, and linear PCM by its size. 0 when it cannot be told.
[[nodiscard]] std::int64_t framesOfPacket(const AVCodecParameters& parameters,
                                          const AVPacket& packet);

}  // namespace tonvale
