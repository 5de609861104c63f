// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/CodecMemory.h"

#include <gtest/gtest.h>

namespace tonvale::test {

namespace {

CodecMemory memoryOf(AVCodecID codec, int framesPerPacket = 1024)
{
    AVCodecParameters parameters = {};
    parameters.codec_id = codec;
    return CodecMemory::of(
        parameters, {.sampleRate = 48000, .channelCount = 2, .framesPerPacket = framesPerPacket});
}

TEST(CodecMemoryTest, AnMp3IsDecodedFromWhereItsReservoirMayBegin)
{
    for (const AVCodecID codec : {AV_CODEC_ID_MP1, AV_CODEC_ID_MP2, AV_CODEC_ID_MP3}) {
        // 511 bytes in 36 of the smallest packets, and two for overlap and filter bank.
        EXPECT_GE(memoryOf(codec).preroll, (36 + 2) * 1152) << codec;
        EXPECT_LT(memoryOf(codec).preroll, 2 * 48000) << codec << ": seeking would be slow";
        EXPECT_EQ(memoryOf(codec).stretch, 0) << codec << ": it forgets everything";
    }
}

TEST(CodecMemoryTest, VorbisNeedsTheBlockBefore)
{
    EXPECT_GE(memoryOf(AV_CODEC_ID_VORBIS).preroll, 8192);
    EXPECT_LT(memoryOf(AV_CODEC_ID_VORBIS).preroll, 4 * 8192);
    EXPECT_EQ(memoryOf(AV_CODEC_ID_VORBIS).stretch, 0);
}

TEST(CodecMemoryTest, AacIsDecodedInStretchesFromPacketsBefore)
{
    const CodecMemory plain = memoryOf(AV_CODEC_ID_AAC, 1024);
    EXPECT_GE(plain.preroll, 2 * 1024);
    EXPECT_LT(plain.preroll, 10 * 1024);
    EXPECT_GE(plain.stretch, 5 * 48000);
    const CodecMemory replicating = memoryOf(AV_CODEC_ID_AAC, 2048);
    EXPECT_GE(replicating.preroll, 20 * 2048) << "its set-up need not be in every packet";
    EXPECT_EQ(replicating.stretch, plain.stretch);
    EXPECT_EQ(memoryOf(AV_CODEC_ID_AAC, 960).preroll % 960, 0) << "whole packets";
}

TEST(CodecMemoryTest, OpusIsDecodedInStretchesFromLongBefore)
{
    EXPECT_GT(memoryOf(AV_CODEC_ID_OPUS).preroll, 48000 * 80 / 1000) << "what its format asks for";
    EXPECT_GE(memoryOf(AV_CODEC_ID_OPUS).stretch, 5 * 48000);
}

TEST(CodecMemoryTest, OtherDecodersRememberNothing)
{
    for (const AVCodecID codec : {AV_CODEC_ID_FLAC, AV_CODEC_ID_PCM_S16LE, AV_CODEC_ID_ALAC}) {
        EXPECT_EQ(memoryOf(codec).preroll, 0) << codec;
        EXPECT_EQ(memoryOf(codec).stretch, 0) << codec;
    }
}

}  // namespace

}  // namespace tonvale::test
