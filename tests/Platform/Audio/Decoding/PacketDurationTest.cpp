// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/PacketDuration.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <vector>

namespace tonvale {

namespace {

using Bytes = std::vector<std::uint8_t>;

std::int64_t framesOf(AVCodecID codec, Bytes bytes, Bytes extradata = {})
{
    AVCodecParameters parameters = {};
    parameters.codec_id = codec;
    parameters.extradata = extradata.data();
    parameters.extradata_size = static_cast<int>(extradata.size());
    AVPacket packet = {};
    packet.data = bytes.data();
    packet.size = static_cast<int>(bytes.size());
    return framesOfPacket(parameters, packet);
}

/// A FLAC frame's first bytes; frame number and what follows are up to the caller.
Bytes flacFrame(unsigned blockSizeCode, const Bytes& rest)
{
    Bytes bytes{0xFF, 0xF8, static_cast<std::uint8_t>(blockSizeCode << 4U | 9U), 0x18};
    std::ranges::copy(rest, std::back_inserter(bytes));
    return bytes;
}

TEST(PacketDuration, OfFlacIsTheBlockSizeInTheFramesHeader)
{
    constexpr std::array<std::int64_t, 16> frames{0,   192, 576,  1152, 2304, 4608, 200,   1000,
                                                  256, 512, 1024, 2048, 4096, 8192, 16384, 32768};
    for (unsigned code = 0; code < frames.size(); ++code) {
        // A frame number of one byte, then 199, or 999 where the size takes two bytes.
        const Bytes rest = code == 6 ? Bytes{5, 199, 0} : Bytes{5, 3, 231};
        EXPECT_EQ(framesOf(AV_CODEC_ID_FLAC, flacFrame(code, rest)), frames[code]) << code;
    }
}

TEST(PacketDuration, OfFlacIsFoundBehindALongFrameNumber)
{
    EXPECT_EQ(framesOf(AV_CODEC_ID_FLAC, flacFrame(7, {0xE1, 0x80, 0x80, 3, 231})), 1000);
    EXPECT_EQ(framesOf(AV_CODEC_ID_FLAC, flacFrame(7, {0xE1, 0x80, 0x80, 3})), 0) << "cut off";
    EXPECT_EQ(framesOf(AV_CODEC_ID_FLAC, flacFrame(12, {5})), 4096);
    EXPECT_EQ(framesOf(AV_CODEC_ID_FLAC, flacFrame(12, {})), 0) << "cut off";
    EXPECT_EQ(framesOf(AV_CODEC_ID_FLAC, {0, 0, 0xC9, 0x18, 5, 0}), 0) << "no frame";
}

TEST(PacketDuration, OfOpusIsThatOfItsFramesTogether)
{
    EXPECT_EQ(framesOf(AV_CODEC_ID_OPUS, {}), 0);
    EXPECT_EQ(framesOf(AV_CODEC_ID_OPUS, {0U << 3U}), 480);         // SILK, 10 ms
    EXPECT_EQ(framesOf(AV_CODEC_ID_OPUS, {3U << 3U | 1U}), 5760);   // SILK, two of 60 ms
    EXPECT_EQ(framesOf(AV_CODEC_ID_OPUS, {13U << 3U | 2U}), 1920);  // both coders, two of 20 ms
    EXPECT_EQ(framesOf(AV_CODEC_ID_OPUS, {16U << 3U}), 120);        // CELT, 2.5 ms
    EXPECT_EQ(framesOf(AV_CODEC_ID_OPUS, {31U << 3U | 3U, 6}), 5760);
    EXPECT_EQ(framesOf(AV_CODEC_ID_OPUS, {31U << 3U | 3U}), 0) << "cut off";
}

TEST(PacketDuration, OfAlacIsTheSetUpsUnlessThePacketHasItsOwn)
{
    Bytes setUp(36);
    setUp[14] = 16;  // 4096
    EXPECT_EQ(framesOf(AV_CODEC_ID_ALAC, Bytes(7), setUp), 4096);
    const Bytes last{0x20, 0, 0x10, 0, 0x00, 0x07, 0xD0};  // a bit set, then 1000 in 32 bits
    EXPECT_EQ(framesOf(AV_CODEC_ID_ALAC, last, setUp), 1000);
    EXPECT_EQ(framesOf(AV_CODEC_ID_ALAC, Bytes(6), setUp), 0) << "cut off";
    EXPECT_EQ(framesOf(AV_CODEC_ID_ALAC, Bytes(7)), 0) << "no set-up";
}

/// The standard's table of configurations, at 48 kHz.
constexpr std::array<std::int64_t, 32> opusFrames = {
    480, 960, 1920, 2880, 480, 960, 1920, 2880, 480, 960, 1920, 2880, 480, 960, 480, 960,
    120, 240, 480,  960,  120, 240, 480,  960,  120, 240, 480,  960,  120, 240, 480, 960,
};

TEST(PacketDuration, OfOpusIsThatOfEveryConfigurationTimesItsCount)
{
    for (unsigned configuration = 0; configuration < 32; ++configuration) {
        const auto framesOfCount = [configuration](unsigned code, const Bytes& rest) {
            Bytes bytes{static_cast<std::uint8_t>(configuration << 3U | 4U | code)};  // stereo
            std::ranges::copy(rest, std::back_inserter(bytes));
            return framesOf(AV_CODEC_ID_OPUS, bytes);
        };
        const std::int64_t frames = opusFrames[configuration];
        EXPECT_EQ(framesOfCount(0, {}), frames) << configuration;
        EXPECT_EQ(framesOfCount(1, {9}), 2 * frames) << configuration;
        EXPECT_EQ(framesOfCount(2, {9}), 2 * frames) << configuration;
        EXPECT_EQ(framesOfCount(3, {0xC5}), 5 * frames) << configuration;
    }
}

TEST(PacketDuration, OfFlacStandsBehindFrameNumbersOfEveryLength)
{
    for (const Bytes& number : {Bytes{0x7F}, Bytes{0xDF, 0xBF}, Bytes{0xF7, 0xBF, 0xBF, 0xBF},
                                Bytes{0xFE, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF}}) {
        Bytes rest = number;
        rest.push_back(0x12);
        rest.push_back(0x34);
        EXPECT_EQ(framesOf(AV_CODEC_ID_FLAC, flacFrame(6, rest)), 0x13) << number.size();
        EXPECT_EQ(framesOf(AV_CODEC_ID_FLAC, flacFrame(7, rest)), 0x1235) << number.size();
        rest.pop_back();
        EXPECT_EQ(framesOf(AV_CODEC_ID_FLAC, flacFrame(7, rest)), 0) << "cut off";
    }
}

TEST(PacketDuration, OfAlacHasThirtyTwoBits)
{
    Bytes setUp(16);
    setUp[12] = 0x01;
    setUp[13] = 0x02;
    setUp[14] = 0x10;
    setUp[15] = 0x04;
    EXPECT_EQ(framesOf(AV_CODEC_ID_ALAC, Bytes(7), setUp), 0x01021004);
    EXPECT_EQ(framesOf(AV_CODEC_ID_ALAC, {0x20, 0, 0x11, 0x02, 0x04, 0x08, 0x11}, setUp),
              0x81020408);
    setUp.pop_back();
    EXPECT_EQ(framesOf(AV_CODEC_ID_ALAC, Bytes(7), setUp), 0) << "no set-up";
}

TEST(PacketDuration, OfAPacketThatDoesNotTellIsThatOfTheFormatsPackets)
{
    AVCodecParameters parameters = {};
    parameters.codec_id = AV_CODEC_ID_FLAC;
    const AVPacket empty = {};
    DecodedFormat format = {};
    EXPECT_EQ(PacketDuration(parameters, format).framesOf(empty), std::nullopt);
    format.framesPerPacket = 1024;
    EXPECT_EQ(PacketDuration(parameters, format).framesOf(empty), 1024);
}

}  // namespace

}  // namespace tonvale
