// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Decoding/FFmpeg.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace tonvale {

/// What the header of a self-contained audio frame (MPEG audio, ADTS) says.
struct CodedFrameHeader {
    AVCodecID codec = AV_CODEC_ID_NONE;
    std::int64_t size = 0;    ///< bytes, header included
    std::int64_t frames = 0;  ///< frames it decodes to, at sampleRate
    int sampleRate = 0;
    bool isMono = false;     ///< MPEG audio only: moves the Xing tag
    std::uint32_t kind = 0;  ///< header bits that stay the same throughout a stream

    friend bool operator==(const CodedFrameHeader&, const CodedFrameHeader&) = default;
};

/// Bytes that a header parser needs to see.
inline constexpr std::size_t codedFrameHeaderSize = 7;

/// Parses the header at the start of `bytes`, at least codedFrameHeaderSize of them.
/// @return nothing when there is none, or one that cannot be (free bit rate included)
using CodedFrameParser = std::optional<CodedFrameHeader> (*)(std::span<const std::uint8_t> bytes);

[[nodiscard]] std::optional<CodedFrameHeader> parseMpegAudioHeader(
    std::span<const std::uint8_t> bytes);
[[nodiscard]] std::optional<CodedFrameHeader> parseAdtsHeader(std::span<const std::uint8_t> bytes);

/// The length of the tag that begins with `bytes` (at least 10), 0 if none does:
/// ID3v2 in whole, ID3v1, and APE tags that have a header.
[[nodiscard]] std::int64_t tagSize(std::span<const std::uint8_t> bytes);
inline constexpr std::size_t tagHeaderSize = 32;

}  // namespace tonvale
