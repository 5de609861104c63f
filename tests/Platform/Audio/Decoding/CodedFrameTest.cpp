// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/CodedFrame.h"

#include "Platform/Audio/Decoding/ByteFile.h"

#include <gtest/gtest.h>

#include <array>
#include <string_view>

namespace tonvale::test {

namespace {

/// What the standard has of one version and layer: its bits in the header and its numbers.
struct MpegKind {
    std::uint32_t version;
    std::uint32_t layer;
    AVCodecID codec;
    std::int64_t frames;
    std::array<int, 3> sampleRates;
    std::array<int, 14> kilobits;
};

constexpr std::array<int, 3> fullRates = {44100, 48000, 32000};
constexpr std::array<int, 3> halfRates = {22050, 24000, 16000};
constexpr std::array<int, 3> quarterRates = {11025, 12000, 8000};
constexpr std::array<int, 14> lowKilobits = {8,  16, 24, 32,  40,  48,  56,
                                             64, 80, 96, 112, 128, 144, 160};
constexpr std::array<int, 14> lowKilobitsOfLayer1 = {32,  48,  56,  64,  80,  96,  112,
                                                     128, 144, 160, 176, 192, 224, 256};

// clang-format off
constexpr std::array<MpegKind, 7> mpegKinds = {{
    {3, 3, AV_CODEC_ID_MP1, 384, fullRates,
     {32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448}},
    {3, 2, AV_CODEC_ID_MP2, 1152, fullRates,
     {32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384}},
    {3, 1, AV_CODEC_ID_MP3, 1152, fullRates,
     {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320}},
    {2, 3, AV_CODEC_ID_MP1, 384, halfRates, lowKilobitsOfLayer1},
    {2, 2, AV_CODEC_ID_MP2, 1152, halfRates, lowKilobits},
    {2, 1, AV_CODEC_ID_MP3, 576, halfRates, lowKilobits},
    {0, 1, AV_CODEC_ID_MP3, 576, quarterRates, lowKilobits},
}};
// clang-format on

Bytes mpegHeader(std::uint32_t version, std::uint32_t layer, std::uint32_t bitRate,
                 std::uint32_t sampleRate, bool isPadded = false, std::uint32_t mode = 0)
{
    const std::uint32_t header = 0xFFE10000U | version << 19U | layer << 17U | bitRate << 12U
                                 | sampleRate << 10U | (isPadded ? 1U : 0U) << 9U | mode << 6U;
    return {static_cast<std::uint8_t>(header >> 24U),
            static_cast<std::uint8_t>(header >> 16U),
            static_cast<std::uint8_t>(header >> 8U),
            static_cast<std::uint8_t>(header),
            0,
            0,
            0};
}

TEST(CodedFrameTest, EveryMpegHeaderSaysItsSizeRateAndLength)
{
    for (const MpegKind& kind : mpegKinds) {
        for (std::uint32_t bits = 1; bits <= 14; ++bits) {
            for (std::uint32_t rate = 0; rate < 3; ++rate) {
                const auto header =
                    parseMpegAudioHeader(mpegHeader(kind.version, kind.layer, bits, rate));
                ASSERT_TRUE(header) << kind.codec << ' ' << bits << ' ' << rate;
                EXPECT_EQ(header->codec, kind.codec);
                EXPECT_EQ(header->frames, kind.frames);
                EXPECT_EQ(header->sampleRate, kind.sampleRates[rate]);
                // As many bits as last for its frames; layer 1 counts in words of four bytes.
                const std::int64_t word = kind.codec == AV_CODEC_ID_MP1 ? 4 : 1;
                const std::int64_t perSecond = std::int64_t{kind.kilobits[bits - 1]} * 125;
                const std::int64_t words = kind.frames * perSecond / (word * header->sampleRate);
                EXPECT_EQ(header->size, words * word) << kind.codec << ' ' << bits << ' ' << rate;
            }
        }
    }
}

TEST(CodedFrameTest, PaddingIsOneByteAndOneWordInLayer1)
{
    for (const std::uint32_t layer : {1U, 2U, 3U}) {
        const auto plain = parseMpegAudioHeader(mpegHeader(3, layer, 9, 0));
        const auto padded = parseMpegAudioHeader(mpegHeader(3, layer, 9, 0, true));
        ASSERT_TRUE(plain && padded);
        EXPECT_EQ(padded->size - plain->size, layer == 3 ? 4 : 1) << layer;
        EXPECT_EQ(padded->kind, plain->kind);
    }
}

TEST(CodedFrameTest, OnlyTheFourthModeIsMono)
{
    for (std::uint32_t mode = 0; mode < 4; ++mode) {
        EXPECT_EQ(parseMpegAudioHeader(mpegHeader(3, 1, 9, 0, false, mode))->isMono, mode == 3);
    }
}

TEST(CodedFrameTest, WhatCannotBeAnMpegHeaderIsNone)
{
    EXPECT_TRUE(parseMpegAudioHeader(mpegHeader(3, 1, 9, 0)));
    EXPECT_FALSE(parseMpegAudioHeader(mpegHeader(1, 1, 9, 0))) << "reserved version";
    EXPECT_FALSE(parseMpegAudioHeader(mpegHeader(3, 0, 9, 0))) << "reserved layer";
    EXPECT_FALSE(parseMpegAudioHeader(mpegHeader(3, 1, 9, 3))) << "reserved sample rate";
    EXPECT_FALSE(parseMpegAudioHeader(mpegHeader(3, 1, 0, 0))) << "free bit rate";
    EXPECT_FALSE(parseMpegAudioHeader(mpegHeader(3, 1, 15, 0))) << "forbidden bit rate";
    Bytes outOfStep = mpegHeader(3, 1, 9, 0);
    outOfStep[1] &= 0x7F;
    EXPECT_FALSE(parseMpegAudioHeader(outOfStep));
}

TEST(CodedFrameTest, TheKindChangesWithVersionLayerAndRateAlone)
{
    const auto kindOf = [](const Bytes& bytes) { return parseMpegAudioHeader(bytes)->kind; };
    const std::uint32_t kind = kindOf(mpegHeader(3, 1, 9, 0));
    EXPECT_EQ(kindOf(mpegHeader(3, 1, 4, 0, true, 3)), kind);
    EXPECT_NE(kindOf(mpegHeader(2, 1, 9, 0)), kind);
    EXPECT_NE(kindOf(mpegHeader(3, 2, 9, 0)), kind);
    EXPECT_NE(kindOf(mpegHeader(3, 1, 9, 1)), kind);
}

Bytes adtsHeader(std::uint32_t rateIndex, std::uint32_t size, std::uint32_t blocks)
{
    return {0xFF,
            0xF1,
            static_cast<std::uint8_t>(0x40 | rateIndex << 2U),
            static_cast<std::uint8_t>(0x80 | size >> 11U),
            static_cast<std::uint8_t>(size >> 3U),
            static_cast<std::uint8_t>((size & 7U) << 5U | 0x1FU),
            static_cast<std::uint8_t>(0xFC | (blocks - 1))};
}

TEST(CodedFrameTest, EveryAdtsHeaderSaysItsSizeRateAndLength)
{
    constexpr std::array<int, 13> rates = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                                           22050, 16000, 12000, 11025, 8000,  7350};
    for (std::uint32_t rate = 0; rate < rates.size(); ++rate) {
        for (std::uint32_t blocks = 1; blocks <= 4; ++blocks) {
            for (const std::uint32_t size : {8U, 2047U, 2048U, 5555U, 8191U}) {
                const auto header = parseAdtsHeader(adtsHeader(rate, size, blocks));
                ASSERT_TRUE(header) << rate;
                EXPECT_EQ(header->codec, AV_CODEC_ID_AAC);
                EXPECT_EQ(header->size, size);
                EXPECT_EQ(header->frames, 1024 * blocks);
                EXPECT_EQ(header->sampleRate, rates[rate]);
            }
        }
    }
    EXPECT_FALSE(parseAdtsHeader(adtsHeader(13, 200, 1))) << "reserved rate";
    EXPECT_FALSE(parseAdtsHeader(adtsHeader(4, 7, 1))) << "a header and nothing behind it";
    Bytes otherLayer = adtsHeader(4, 200, 1);
    otherLayer[1] |= 0x02;
    EXPECT_FALSE(parseAdtsHeader(otherLayer));
}

Bytes tag(std::string_view begin)
{
    Bytes bytes(tagHeaderSize);
    std::copy(begin.begin(), begin.end(), bytes.begin());
    return bytes;
}

TEST(CodedFrameTest, Id3TagsSayTheirLengthInSevenBitsAByte)
{
    Bytes bytes = tag("ID3\x04");
    bytes[6] = 0x01;
    bytes[7] = 0x02;
    bytes[8] = 0x03;
    bytes[9] = 0x84;  // the eighth bit means nothing
    constexpr std::int64_t body = (1 << 21) + (2 << 14) + (3 << 7) + 4;
    EXPECT_EQ(tagSize(bytes), body + 10);
    bytes[5] = 0x10;
    EXPECT_EQ(tagSize(bytes), body + 20) << "with a footer";
    bytes[3] = 0xFF;
    EXPECT_EQ(tagSize(bytes), 0) << "no version";
    bytes[3] = 0x04;
    EXPECT_EQ(tagSize(std::span(bytes).first(9)), 0) << "cut off";
    EXPECT_EQ(tagSize(std::span(bytes).first(10)), body + 20);
}

TEST(CodedFrameTest, ApeTagsSayTheirLengthInTheHeaderOnly)
{
    Bytes bytes = tag("APETAGEX");
    bytes[12] = 0x04;
    bytes[13] = 0x03;
    bytes[14] = 0x02;
    bytes[15] = 0x81;
    bytes[23] = 0x20;
    EXPECT_EQ(tagSize(bytes), 0x81020304 + std::int64_t{32});
    bytes[23] = 0;
    EXPECT_EQ(tagSize(bytes), 32) << "the footer: its items lie before it";
    EXPECT_EQ(tagSize(std::span(bytes).first(31)), 0) << "cut off";
}

TEST(CodedFrameTest, OldTagsAre128BytesLongAndOtherBytesAreNoTag)
{
    EXPECT_EQ(tagSize(tag("TAG")), 128);
    EXPECT_EQ(tagSize(tag("TA")), 0);
    EXPECT_EQ(tagSize({}), 0);
}

}  // namespace

}  // namespace tonvale::test
