// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/Mp3InfoTag.h"

#include "Platform/Audio/Decoding/ByteFile.h"

#include <gtest/gtest.h>

namespace tonvale::test {

namespace {

constexpr std::int64_t decoderDelay = 529;  // frames, of every decoder

CodedFrameHeader mp3Header(std::int64_t frames, bool isMono)
{
    return {.codec = AV_CODEC_ID_MP3, .frames = frames, .sampleRate = 44100, .isMono = isMono};
}

/// A frame with a tag behind so many bytes.
Bytes frameWith(const Bytes& tag, std::size_t offset)
{
    Bytes frame(offset, 0xFF);
    append(frame, tag);
    return frame;
}

Bytes xing(std::uint32_t flags, std::string_view name = "Xing")
{
    Bytes tag = text(name);
    append(tag, flags, 4);
    if ((flags & 1U) != 0) {
        append(tag, 0x01020304, 4);
    }
    if ((flags & 2U) != 0) {
        append(tag, 0x05060708, 4);
    }
    if ((flags & 4U) != 0) {
        append(tag, Bytes(100, 0x55));
    }
    if ((flags & 8U) != 0) {
        append(tag, 0x66666666, 4);
    }
    return tag;
}

/// Name and version of an encoder, and two numbers of twelve bits.
Bytes extension(std::uint64_t delay, std::uint64_t padding)
{
    Bytes bytes = text("LAME3.100");
    append(bytes, Bytes(12, 0x77));
    append(bytes, delay << 12U | padding, 3);
    return bytes;
}

const CodedFrameHeader usual = mp3Header(1152, false);

TEST(Mp3InfoTagTest, TheTagStandsBehindTheSideInformation)
{
    struct Place {
        CodedFrameHeader header;
        std::size_t sideInformation;
    };
    const Place places[] = {{mp3Header(1152, false), 32},
                            {mp3Header(1152, true), 17},
                            {mp3Header(576, false), 17},
                            {mp3Header(576, true), 9}};
    for (const auto& [header, size] : places) {
        for (const std::size_t checksum : {0U, 2U}) {
            const auto at = [&, &header = header, &size = size](std::size_t shift) {
                return Mp3InfoTag::parse(header, frameWith(xing(1), 4 + checksum + size + shift));
            };
            ASSERT_TRUE(at(0)) << size << ' ' << checksum;
            EXPECT_EQ(at(0)->packetCount, 0x01020304);
            EXPECT_FALSE(at(1));
        }
    }
}

TEST(Mp3InfoTagTest, EachNumberIsReadWhereTheFlagsSay)
{
    for (std::uint32_t flags = 0; flags < 16; ++flags) {
        Bytes tag = xing(flags, flags % 2 == 0 ? "Info" : "Xing");
        append(tag, extension(0x123, 0xABC));
        const auto info = Mp3InfoTag::parse(usual, frameWith(tag, 36));
        ASSERT_TRUE(info) << flags;
        EXPECT_EQ(info->packetCount.value_or(0), (flags & 1U) != 0 ? 0x01020304 : 0) << flags;
        EXPECT_EQ(info->byteCount.value_or(0), (flags & 2U) != 0 ? 0x05060708 : 0) << flags;
        EXPECT_TRUE(info->hasPadding) << flags;
        EXPECT_EQ(info->startPadding, 0x123 + decoderDelay) << flags;
        EXPECT_EQ(info->endPadding, 0xABC - decoderDelay) << flags;
    }
}

TEST(Mp3InfoTagTest, PaddingNeedsAnEncodersNameAndANumber)
{
    const auto paddingOf = [](const Bytes& behind) {
        Bytes tag = xing(0);
        append(tag, behind);
        return Mp3InfoTag::parse(usual, frameWith(tag, 36))->hasPadding;
    };
    EXPECT_TRUE(paddingOf(extension(1, 0)));
    EXPECT_TRUE(paddingOf(extension(0, 1)));
    EXPECT_FALSE(paddingOf(extension(0, 0)));
    Bytes nameless = extension(1, 1);
    nameless[0] = 0;
    EXPECT_FALSE(paddingOf(nameless));
    Bytes cut = extension(1, 1);
    cut.pop_back();
    EXPECT_FALSE(paddingOf(cut));
}

TEST(Mp3InfoTagTest, TheOtherTagStandsAlwaysAtOnePlace)
{
    Bytes tag = text("VBRI");
    append(tag, Bytes(6, 0x33));
    append(tag, 0x05060708, 4);
    append(tag, 0x01020304, 4);
    const auto info = Mp3InfoTag::parse(mp3Header(576, true), frameWith(tag, 36));
    ASSERT_TRUE(info);
    EXPECT_EQ(info->byteCount, 0x05060708);
    EXPECT_EQ(info->packetCount, 0x01020304);
    EXPECT_FALSE(info->hasPadding);
    EXPECT_FALSE(Mp3InfoTag::parse(mp3Header(576, true), frameWith(tag, 37)));
}

TEST(Mp3InfoTagTest, NumbersMayEndWithTheFrameAndAreZeroWhereTheyAreCutOff)
{
    const auto info = Mp3InfoTag::parse(usual, frameWith(xing(1), 36));
    ASSERT_TRUE(info);
    EXPECT_EQ(info->packetCount, 0x01020304);
    Bytes cut = xing(1);
    cut.pop_back();
    EXPECT_EQ(Mp3InfoTag::parse(usual, frameWith(cut, 36))->packetCount, 0);
}

TEST(Mp3InfoTagTest, MusicAndOtherLayersHaveNone)
{
    EXPECT_FALSE(Mp3InfoTag::parse(usual, Bytes(400, 0x55)));
    EXPECT_FALSE(Mp3InfoTag::parse(usual, {}));
    CodedFrameHeader other = usual;
    other.codec = AV_CODEC_ID_MP2;
    EXPECT_FALSE(Mp3InfoTag::parse(other, frameWith(xing(1), 36)));
}

}  // namespace

}  // namespace tonvale::test
