// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/PacketDuration.h"

#include "Platform/Audio/Decoding/BigEndian.h"

#include <algorithm>
#include <array>
#include <bit>

namespace tonvale {

namespace {

using Bytes = std::span<const std::uint8_t>;

/// At 48 kHz.
std::int64_t framesOfOpusPacket(Bytes packet)
{
    if (packet.empty()) {
        return 0;
    }
    constexpr std::array<std::int64_t, 4> silkFrames = {480, 960, 1920, 2880};
    const unsigned configuration = packet[0] >> 3U;
    std::int64_t frames = 0;
    if (configuration < 12) {
        frames = silkFrames[configuration % 4];
    } else if (configuration < 16) {
        frames = configuration % 2 == 0 ? 480 : 960;
    } else {
        frames = std::int64_t{120} << configuration % 4;
    }
    switch (packet[0] & 3U) {
    case 0:
        return frames;
    case 1:
    case 2:
        return frames * 2;
    default:
        return packet.size() < 2 ? 0 : frames * (packet[1] & 0x3F);
    }
}

/// The block size is a code of 4 bits: one is reserved, and two stand for a number behind the frame
/// number, which in turn is as long as its first byte says.
std::int64_t framesOfFlacPacket(Bytes packet)
{
    if (packet.size() < 5 || packet[0] != 0xFF) {
        return 0;
    }
    const unsigned code = packet[2] >> 4U;
    if (code == 0) {
        return 0;
    }
    if (code == 6 || code == 7) {
        const auto ones = static_cast<std::size_t>(std::countl_one(packet[4]));
        const std::size_t offset = 4 + std::max<std::size_t>(ones, 1);
        if (packet.size() < offset + 2) {
            return 0;
        }
        return (code == 6 ? packet[offset] : packet[offset] << 8 | packet[offset + 1]) + 1;
    }
    if (code == 1) {
        return 192;
    }
    return code < 6 ? std::int64_t{576} << (code - 2) : std::int64_t{256} << (code - 8);
}

/// Every packet but the last has the length that the codec's set-up names; the last one has a bit
/// set, 19 bits from its start, and its length three bits later.
std::int64_t framesOfAlacPacket(Bytes packet, const AVCodecParameters& parameters)
{
    if (packet.size() < 7 || parameters.extradata_size < 16) {
        return 0;
    }
    if ((packet[2] & 0x10) == 0) {
        return bigEndian32({parameters.extradata + 12, 4});
    }
    const std::uint64_t bits = std::uint64_t{bigEndian32(packet.subspan(2))} << 8U | packet[6];
    return static_cast<std::int64_t>(bits >> 1U & 0xFFFFFFFFU);
}

}  // namespace

void PacketDuration::VorbisParserDeleter::operator()(AVVorbisParseContext* parser) const noexcept
{
    av_vorbis_parse_free(&parser);
}

PacketDuration::PacketDuration(const AVCodecParameters& parameters, const DecodedFormat& format)
    : parameters_(parameters)
    , format_(format)
{
    if (parameters.codec_id == AV_CODEC_ID_VORBIS) {
        vorbisParser_.reset(av_vorbis_parse_init(parameters.extradata, parameters.extradata_size));
    }
}

std::optional<std::int64_t> PacketDuration::framesOf(const AVPacket& packet)
{
    const bool isFirst = isFirst_;
    isFirst_ = false;
    if (vorbisParser_) {
        const int frames = av_vorbis_parse_frame(vorbisParser_.get(), packet.data, packet.size);
        return isFirst ? 0 : std::max(frames, 0);  // the first one only begins the overlap
    }
    const std::int64_t frames = framesOfPacket(parameters_, packet);
    if (frames > 0) {
        return frames;
    }
    return format_.framesPerPacket > 0 ? std::optional<std::int64_t>(format_.framesPerPacket)
                                       : std::nullopt;
}

std::int64_t framesOfPacket(const AVCodecParameters& parameters, const AVPacket& packet)
{
    const Bytes bytes(packet.data, static_cast<std::size_t>(std::max(packet.size, 0)));
    switch (parameters.codec_id) {
    case AV_CODEC_ID_OPUS:
        return framesOfOpusPacket(bytes);
    case AV_CODEC_ID_FLAC:
        return framesOfFlacPacket(bytes);
    case AV_CODEC_ID_ALAC:
        return framesOfAlacPacket(bytes, parameters);
    default:
        break;
    }
    // The library writes to the parameters nowhere here, but its interface does not say so.
    return std::max(
        av_get_audio_frame_duration2(const_cast<AVCodecParameters*>(&parameters), packet.size), 0);
}

}  // namespace tonvale
