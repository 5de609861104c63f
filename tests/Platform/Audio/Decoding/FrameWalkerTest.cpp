// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/FrameWalker.h"

#include "Platform/Audio/Decoding/ByteFile.h"

#include <gtest/gtest.h>

namespace tonvale::test {

namespace {

/// An MP3 frame of 44100 Hz with the n-th bit rate of its table.
Bytes mp3Frame(unsigned bitRate)
{
    Bytes frame = {0xFF, 0xFB, static_cast<std::uint8_t>(bitRate << 4U), 0};
    const auto header = parseMpegAudioHeader(Bytes{frame[0], frame[1], frame[2], 0, 0, 0, 0});
    frame.resize(static_cast<std::size_t>(header->size));
    return frame;
}

Bytes frames(std::initializer_list<unsigned> bitRates)
{
    Bytes bytes;
    for (const unsigned bitRate : bitRates) {
        append(bytes, mp3Frame(bitRate));
    }
    return bytes;
}

/// Where a walk through the file finds frames.
std::vector<std::int64_t> found(const Bytes& bytes)
{
    const ByteFile file(bytes);
    FrameWalker walker(file.input(), parseMpegAudioHeader);
    std::vector<std::int64_t> offsets;
    while (const auto frame = walker.next()) {
        offsets.push_back(frame->offset);
    }
    return offsets;
}

std::int64_t size(unsigned bitRate)
{
    return static_cast<std::int64_t>(mp3Frame(bitRate).size());
}

TEST(FrameWalkerTest, EveryWholeFrameIsFoundInItsPlace)
{
    Bytes bytes = frames({9, 5, 14, 9});
    EXPECT_EQ(found(bytes), (std::vector<std::int64_t>{0, size(9), size(9) + size(5),
                                                       size(9) + size(5) + size(14)}));
    bytes.pop_back();
    EXPECT_EQ(found(bytes).size(), 3U) << "the last one is cut off";
    EXPECT_TRUE(found({}).empty());
}

TEST(FrameWalkerTest, AHeaderIsBelievedWhenTwoMoreFollow)
{
    Bytes bytes(10, 0x20);
    append(bytes, mp3Frame(5));  // by chance
    append(bytes, Bytes(50, 0x20));
    append(bytes, mp3Frame(5));
    append(bytes, mp3Frame(5));  // two by chance
    append(bytes, Bytes(50, 0x20));
    const auto begin = static_cast<std::int64_t>(bytes.size());
    append(bytes, frames({9, 9, 9}));
    append(bytes, Bytes(50, 0x20));
    EXPECT_EQ(found(bytes).front(), begin);
    EXPECT_EQ(found(bytes).size(), 3U);
}

TEST(FrameWalkerTest, TheLastFramesOfAFileNeedFewerToFollow)
{
    EXPECT_EQ(found(frames({9})).size(), 1U) << "a file of one frame";
    Bytes bytes = frames({9, 9, 9});
    append(bytes, Bytes(50, 0x20));
    append(bytes, frames({9}));
    EXPECT_EQ(found(bytes).size(), 3U) << "one by chance";
    append(bytes, frames({9}));
    EXPECT_EQ(found(bytes).size(), 5U);
}

TEST(FrameWalkerTest, AHeaderThatIsNotBelievedEndsTheRun)
{
    Bytes bytes = frames({9, 9, 9});
    append(bytes, Bytes{0xFF, 0xFD, 0x90, 0});  // of another layer, and nothing behind it
    append(bytes, Bytes(50, 0x20));
    append(bytes, mp3Frame(5));  // by chance
    append(bytes, Bytes(50, 0x20));
    append(bytes, frames({9, 9, 9}));
    EXPECT_EQ(found(bytes).size(), 6U);
}

TEST(FrameWalkerTest, NoFrameIsMissedBehindAnyLengthOfJunk)
{
    for (const std::size_t size : {1U, 32767U, 32768U, 32769U, 65535U, 65536U, 65537U}) {
        Bytes bytes(size, 0x20);
        append(bytes, frames({9, 9, 9}));
        EXPECT_EQ(found(bytes).size(), 3U) << size;
        EXPECT_EQ(found(bytes).front(), static_cast<std::int64_t>(size));
    }
}

TEST(FrameWalkerTest, TagsAreSteppedOver)
{
    Bytes tag = text("ID3\x04");
    append(tag, Bytes{0, 0, 0, 0, 0x02, 0x00});
    append(tag, frames({9}));
    tag.resize(266);
    Bytes bytes = tag;
    append(bytes, frames({9, 9}));
    append(bytes, tag);
    append(bytes, frames({9}));
    const std::int64_t first = 266;
    EXPECT_EQ(found(bytes),
              (std::vector<std::int64_t>{first, first + size(9), 2 * first + 2 * size(9)}));
}

TEST(FrameWalkerTest, AJumpGoesOnAtAFrameFoundEarlier)
{
    const ByteFile file(frames({9, 5, 14, 9}));
    FrameWalker walker(file.input(), parseMpegAudioHeader);
    static_cast<void>(walker.next());
    const auto second = walker.next();
    ASSERT_TRUE(second);
    EXPECT_TRUE(walker.next());
    walker.jumpTo(*second);
    const auto again = walker.next();
    ASSERT_TRUE(again);
    EXPECT_EQ(again->offset, second->offset);
    EXPECT_EQ(again->header, second->header);
    const auto bytes = walker.bytesOf(*again);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.end()), mp3Frame(5));
}

TEST(FrameWalkerTest, ASampleMeasuresTheFramesThatFollowAPlace)
{
    const ByteFile file(frames({14, 9, 5, 14, 9, 9}));
    FrameWalker walker(file.input(), parseMpegAudioHeader);
    const auto sample = walker.sampleAfter(size(14), 3);
    EXPECT_EQ(sample.count, 3);
    EXPECT_EQ(sample.bytes, size(9) + size(5) + size(14));
    EXPECT_EQ(sample.smallest, size(5));
    EXPECT_EQ(sample.largest, size(14));
    EXPECT_EQ(walker.sampleAfter(size(14) + size(9), 3).smallest, size(5)) << "the first of them";
    EXPECT_EQ(walker.sampleAfter(size(14), 100).count, 5);
    EXPECT_EQ(walker.next()->offset, 0) << "the walk itself has not moved";
}

TEST(FrameWalkerTest, FramesAfterAPlaceAreToldFromTags)
{
    Bytes bytes = frames({9, 9, 9});
    const auto end = static_cast<std::int64_t>(bytes.size());
    append(bytes, text("TAG"));
    bytes.resize(bytes.size() + 125);
    const ByteFile file(bytes);
    FrameWalker walker(file.input(), parseMpegAudioHeader);
    EXPECT_TRUE(walker.hasFrameAfter(0));
    EXPECT_TRUE(walker.hasFrameAfter(size(9)));
    EXPECT_FALSE(walker.hasFrameAfter(end));
}

}  // namespace

}  // namespace tonvale::test
