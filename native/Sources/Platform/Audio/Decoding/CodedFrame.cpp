// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/CodedFrame.h"

#include "Platform/Audio/Decoding/BigEndian.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tonvale {

namespace {

using BitRates = std::array<int, 16>;  // kbit/s; 0 is free or forbidden

constexpr std::array<BitRates, 3> bitRatesOfVersion1 = {{
    {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448, 0},
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384, 0},
    {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 0},
}};
constexpr std::array<BitRates, 3> bitRatesOfVersion2 = {{
    {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256, 0},
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 0},
    {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 0},
}};
constexpr std::array<int, 3> mpegSampleRates = {44100, 48000, 32000};
constexpr std::array<int, 13> adtsSampleRates = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                                                 22050, 16000, 12000, 11025, 8000,  7350};
constexpr std::array<AVCodecID, 3> mpegCodecs = {AV_CODEC_ID_MP1, AV_CODEC_ID_MP2, AV_CODEC_ID_MP3};

bool beginsWith(std::span<const std::uint8_t> bytes, std::string_view text)
{
    return bytes.size() >= text.size() && std::equal(text.begin(), text.end(), bytes.begin());
}

/// The fields of a 32-bit MPEG audio header.
struct MpegFields {
    explicit MpegFields(std::uint32_t header)
        : version(header >> 19U & 3U)
        , layer(4 - (header >> 17U & 3U))
        , bitRateIndex(header >> 12U & 15U)
        , rateIndex(header >> 10U & 3U)
        , padding(static_cast<int>(header >> 9U & 1U))
        , mode(header >> 6U & 3U)
        , isValid(header >> 21U == 0x7FF && version != 1 && layer != 4 && rateIndex != 3)
    {
    }

    std::uint32_t version;  ///< 3: MPEG-1, 2: MPEG-2, 0: MPEG-2.5
    std::uint32_t layer;    ///< 1 ... 3
    std::uint32_t bitRateIndex;
    std::uint32_t rateIndex;
    int padding;
    std::uint32_t mode;  ///< 3: mono
    bool isValid;
};

std::int64_t framesOf(const MpegFields& fields)
{
    if (fields.layer == 1) {
        return 384;
    }
    return fields.layer == 3 && fields.version != 3 ? 576 : 1152;
}

}  // namespace

std::optional<CodedFrameHeader> parseMpegAudioHeader(std::span<const std::uint8_t> bytes)
{
    const std::uint32_t header = bigEndian32(bytes);
    const MpegFields fields(header);
    if (!fields.isValid) {
        return std::nullopt;
    }
    const bool isVersion1 = fields.version == 3;
    const auto& rates = isVersion1 ? bitRatesOfVersion1 : bitRatesOfVersion2;
    const int bitRate = rates[fields.layer - 1][fields.bitRateIndex] * 1000;
    if (bitRate == 0) {
        return std::nullopt;
    }
    const int halvings = isVersion1 ? 0 : (fields.version == 2 ? 1 : 2);
    const int sampleRate = mpegSampleRates[fields.rateIndex] >> halvings;
    const std::int64_t frames = framesOf(fields);
    const int slot = fields.layer == 1 ? 4 : 1;  // bytes
    return CodedFrameHeader{
        .codec = mpegCodecs[fields.layer - 1],
        .size = (frames / 8 / slot * bitRate / sampleRate + fields.padding) * slot,
        .frames = frames,
        .sampleRate = sampleRate,
        .isMono = fields.mode == 3,
        .kind = header & 0xFFFE0C00U,  // sync, version, layer, sample rate
    };
}

std::optional<CodedFrameHeader> parseAdtsHeader(std::span<const std::uint8_t> bytes)
{
    const std::uint32_t header = bigEndian32(bytes);
    const std::uint32_t rateIndex = header >> 10U & 15U;
    // 12 bits of sync, and "layer" 0
    if ((header & 0xFFF60000U) != 0xFFF00000U || rateIndex >= adtsSampleRates.size()) {
        return std::nullopt;
    }
    const std::int64_t size = (bytes[3] & 3) << 11 | bytes[4] << 3 | bytes[5] >> 5;
    const std::int64_t blocks = (bytes[6] & 3) + 1;
    if (size <= static_cast<std::int64_t>(codedFrameHeaderSize)) {
        return std::nullopt;
    }
    return CodedFrameHeader{
        .codec = AV_CODEC_ID_AAC,
        .size = size,
        .frames = blocks * 1024,
        .sampleRate = adtsSampleRates[rateIndex],
        .kind = header & 0xFFFEFDC0U,  // sync, version, profile, sample rate, channels
    };
}

std::int64_t tagSize(std::span<const std::uint8_t> bytes)
{
    constexpr std::int64_t id3HeaderSize = 10;
    if (beginsWith(bytes, "ID3") && bytes.size() >= 10 && bytes[3] != 0xFF) {
        const bool hasFooter = (bytes[5] & 0x10) != 0;
        const std::int64_t body = (bytes[6] & 0x7F) << 21 | (bytes[7] & 0x7F) << 14
                                  | (bytes[8] & 0x7F) << 7 | (bytes[9] & 0x7F);
        return body + (hasFooter ? 2 * id3HeaderSize : id3HeaderSize);
    }
    if (beginsWith(bytes, "APETAGEX") && bytes.size() >= tagHeaderSize) {
        const bool isHeader = (bytes[23] & 0x20) != 0;  // else the footer: its items lie before it
        const std::int64_t body =
            bytes[12] | bytes[13] << 8 | bytes[14] << 16 | std::int64_t{bytes[15]} << 24;
        return isHeader ? body + 32 : 32;
    }
    return beginsWith(bytes, "TAG") ? 128 : 0;
}

}  // namespace tonvale
