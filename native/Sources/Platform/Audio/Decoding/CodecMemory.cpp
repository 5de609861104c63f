// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/CodecMemory.h"

namespace tonvale {

namespace {

constexpr std::int64_t stretchSeconds = 10;

/// The bit reservoir of MP3 reaches back 511 bytes, which takes up to 36 of its smallest frames,
/// and overlap and filter bank take two more.
constexpr std::int64_t mp3Packets = 48;
/// Overlap with the packet before; twice that for safety.
constexpr std::int64_t aacPackets = 4;
/// Packets of 20 ms: 80 ms are asked for.
constexpr std::int64_t opusFrames = 24000;
constexpr std::int64_t longestVorbisBlock = 8192;

}  // namespace

CodecMemory CodecMemory::of(const AVCodecParameters& parameters, const DecodedFormat& format)
{
    const std::int64_t stretch = stretchSeconds * format.sampleRate;
    switch (parameters.codec_id) {
    case AV_CODEC_ID_MP1:
    case AV_CODEC_ID_MP2:
    case AV_CODEC_ID_MP3:
        return {.preroll = mp3Packets * 1152};
    case AV_CODEC_ID_VORBIS:
        return {.preroll = 2 * longestVorbisBlock};
    case AV_CODEC_ID_AAC:
        return {.preroll = aacPackets * format.framesPerPacket, .stretch = stretch};
    case AV_CODEC_ID_OPUS:
        return {.preroll = opusFrames, .stretch = stretch};
    default:
        return {};
    }
}

}  // namespace tonvale
