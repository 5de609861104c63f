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
/// Overlap with the packet before, and some for safety. The noise that replaces parts of the sound
/// is never the same again: the decoder's random state survives even a flush.
constexpr std::int64_t aacPackets = 4;
/// With spectral band replication, whose set-up need not be in every packet. Its packets are
/// longer.
constexpr std::int64_t replicatingAacPackets = 32;
constexpr int plainAacFrames = 1024;
/// Half a second. After 80 ms, which the format asks for, samples measured still differed by 0.1
/// from those of straight decoding; after this, by less than 1e-6.
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
    case AV_CODEC_ID_AAC: {
        const bool isPlain = format.framesPerPacket <= plainAacFrames;
        const std::int64_t packets = isPlain ? aacPackets : replicatingAacPackets;
        return {.preroll = packets * format.framesPerPacket, .stretch = stretch};
    }
    case AV_CODEC_ID_OPUS:
        return {.preroll = opusFrames, .stretch = stretch};
    default:
        return {};
    }
}

}  // namespace tonvale
