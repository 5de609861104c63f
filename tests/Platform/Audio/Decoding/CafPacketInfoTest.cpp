// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/CafPacketInfo.h"

#include "Platform/Audio/Decoding/ByteFile.h"

#include <gtest/gtest.h>

namespace tonvale::test {

namespace {

Bytes chunk(std::string_view kind, const Bytes& content)
{
    Bytes bytes = text(kind);
    append(bytes, content.size(), 8);
    append(bytes, content);
    return bytes;
}

Bytes packetTable(std::uint64_t validFrames, std::uint32_t primingFrames)
{
    Bytes content;
    append(content, 99, 8);
    append(content, validFrames, 8);
    append(content, primingFrames, 4);
    append(content, 77, 4);
    return chunk("pakt", content);
}

std::optional<CafPacketInfo> parsed(const Bytes& chunks)
{
    Bytes file = text("caff");
    append(file, 0x00010000, 4);
    append(file, chunks);
    return CafPacketInfo::parse(ByteFile(file).input());
}

TEST(CafPacketInfoTest, TheTableIsFoundBehindOtherChunks)
{
    Bytes chunks = chunk("desc", Bytes(32));
    append(chunks, chunk("free", Bytes(5)));
    append(chunks, chunk("free", {}));
    append(chunks, packetTable(0x0102030405, 0x000A0B0C));
    append(chunks, chunk("data", Bytes(100)));
    const auto info = parsed(chunks);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->validFrames, 0x0102030405);
    EXPECT_EQ(info->primingFrames, 0x000A0B0C);
}

TEST(CafPacketInfoTest, FramesBeyondEverySongAreNotBelieved)
{
    EXPECT_TRUE(parsed(packetTable(1, 0)));
    EXPECT_TRUE(parsed(packetTable(1ULL << 40U, 1U << 20U)));
    EXPECT_FALSE(parsed(packetTable(0, 0)));
    EXPECT_FALSE(parsed(packetTable((1ULL << 40U) + 1, 0)));
    EXPECT_FALSE(parsed(packetTable(1, (1U << 20U) + 1)));
    EXPECT_FALSE(parsed(packetTable(~0ULL, 0)));
}

TEST(CafPacketInfoTest, ChunksWithoutEndAreNotAllLookedAt)
{
    const auto behind = [](int emptyChunks) {
        Bytes chunks;
        for (int count = 0; count < emptyChunks; ++count) {
            append(chunks, chunk("free", {}));
        }
        append(chunks, packetTable(5, 0));
        return chunks;
    };
    EXPECT_TRUE(parsed(behind(100)));
    EXPECT_FALSE(parsed(behind(100'000)));
}

TEST(CafPacketInfoTest, NoTableOrHalfOfOneIsNone)
{
    EXPECT_FALSE(parsed({}));
    EXPECT_FALSE(parsed(chunk("data", Bytes(100))));
    Bytes cut = packetTable(5, 0);
    cut.pop_back();
    EXPECT_FALSE(parsed(cut));
    Bytes open = text("data");
    append(open, ~0ULL, 8);  // to the end of the file
    append(open, packetTable(5, 0));
    EXPECT_FALSE(parsed(open));
}

}  // namespace

}  // namespace tonvale::test
