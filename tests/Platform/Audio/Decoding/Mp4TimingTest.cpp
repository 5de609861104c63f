// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/Mp4Timing.h"

#include "Platform/Audio/Decoding/Mp4File.h"

#include <gtest/gtest.h>

namespace tonvale::test {

namespace {

Bytes longBox(std::string_view kind, const Bytes& content)
{
    Bytes bytes;
    append(bytes, 1, 4);
    append(bytes, text(kind));
    append(bytes, content.size() + 16, 8);
    append(bytes, content);
    return bytes;
}

std::optional<Mp4Timing> parsed(const Bytes& file, std::uint32_t trackId = 1)
{
    return Mp4Timing::parse(ByteFile(file).input(), trackId);
}

TEST(Mp4TimingTest, RatesAndEditAreReadInBothSizesOfNumbers)
{
    for (const bool isLong : {false, true}) {
        const auto timing = parsed(
            movie(track(1, 44100, editList(isLong, {{0x01020304, 0x1234567}}), isLong), isLong));
        ASSERT_TRUE(timing) << isLong;
        EXPECT_EQ(timing->movieTicksPerSecond, 600);
        EXPECT_EQ(timing->mediaTicksPerSecond, 44100);
        ASSERT_TRUE(timing->edit) << isLong;
        EXPECT_EQ(timing->edit->duration, 0x01020304);
        EXPECT_EQ(timing->edit->mediaStart, 0x1234567);
    }
}

TEST(Mp4TimingTest, LongNumbersHaveSixtyFourBits)
{
    const auto timing = parsed(movie(track(1, 44100, editList(true, {{1LL << 49, 1LL << 40}}))));
    ASSERT_TRUE(timing && timing->edit);
    EXPECT_EQ(timing->edit->duration, 1LL << 49);
    EXPECT_EQ(timing->edit->mediaStart, 1LL << 40);
}

TEST(Mp4TimingTest, TheTrackIsFoundByItsNumberWhereverItStands)
{
    Bytes tracks = track(1, 1000, {});
    append(tracks, track(7, 2000, editList(false, {{50, 60}})));
    append(tracks, track(0x01020304, 3000, {}));
    EXPECT_EQ(parsed(movie(tracks), 1)->mediaTicksPerSecond, 1000);
    EXPECT_FALSE(parsed(movie(tracks), 1)->edit);
    EXPECT_EQ(parsed(movie(tracks), 7)->mediaTicksPerSecond, 2000);
    EXPECT_EQ(parsed(movie(tracks), 7)->edit->mediaStart, 60);
    EXPECT_EQ(parsed(movie(tracks), 0x01020304)->mediaTicksPerSecond, 3000);
    EXPECT_FALSE(parsed(movie(tracks), 2));
}

TEST(Mp4TimingTest, SeveralEditsBeginWithTheFirstAndLastTogether)
{
    const auto timing =
        parsed(movie(track(1, 44100, editList(false, {{30, -1}, {100, 1024}, {20, 9000}}))));
    ASSERT_TRUE(timing && timing->edit);
    EXPECT_EQ(timing->edit->mediaStart, 1024) << "an edit of nothing only delays";
    EXPECT_EQ(timing->edit->duration, 120);
}

TEST(Mp4TimingTest, EditsThatCannotBeAreLeftOut)
{
    const auto edits = editList(true, {{(1LL << 50) + 1, 5}, {-1, 6}, {1LL << 50, 7}});
    const auto timing = parsed(movie(track(1, 44100, edits)));
    ASSERT_TRUE(timing && timing->edit);
    EXPECT_EQ(timing->edit->mediaStart, 7);
    EXPECT_EQ(timing->edit->duration, 1LL << 50);
}

TEST(Mp4TimingTest, AnEditMayBeginAtTheVeryStart)
{
    const auto timing = parsed(movie(track(1, 44100, editList(false, {{100, 0}, {50, 1024}}))));
    ASSERT_TRUE(timing && timing->edit);
    EXPECT_EQ(timing->edit->mediaStart, 0);
    EXPECT_EQ(timing->edit->duration, 150);
}

TEST(Mp4TimingTest, AListHasNoMoreEditsThanItSays)
{
    Bytes edits = editList(false, {{100, 1024}, {50, 9000}});
    edits.at(8 + 8 + 7) = 1;  // behind two headers of boxes, the last byte of the count
    const auto timing = parsed(movie(track(1, 44100, edits)));
    ASSERT_TRUE(timing && timing->edit);
    EXPECT_EQ(timing->edit->duration, 100);
}

TEST(Mp4TimingTest, AListShorterThanItSaysEndsWhereItEnds)
{
    Bytes content = {0, 0, 0, 0, 0, 0, 0, 9};
    append(content, 100, 4);
    append(content, 1024, 4);
    append(content, 0x00010000, 4);
    const auto timing = parsed(movie(track(1, 44100, box("edts", box("elst", content)))));
    ASSERT_TRUE(timing && timing->edit);
    EXPECT_EQ(timing->edit->duration, 100);
}

TEST(Mp4TimingTest, BoxesMayBeLongOrReachToTheEnd)
{
    Bytes content = header("mvhd", false, 600);
    append(content, track(1, 44100, {}));
    Bytes file = longBox("free", Bytes(100));
    append(file, longBox("moov", content));
    EXPECT_EQ(parsed(file)->mediaTicksPerSecond, 44100);

    Bytes open = box("ftyp", {});
    append(open, 0, 4);
    append(open, text("moov"));
    append(open, content);
    EXPECT_EQ(parsed(open)->mediaTicksPerSecond, 44100);
}

TEST(Mp4TimingTest, BoxesWithoutEndAreNotAllLookedAt)
{
    const auto behind = [](int emptyBoxes) {
        Bytes file;
        for (int count = 0; count < emptyBoxes; ++count) {
            append(file, box("free", {}));
        }
        append(file, movie(track(1, 44100, {})));
        return file;
    };
    EXPECT_TRUE(parsed(behind(2 * 24 * 3600 + 1))) << "a day of fragments";
    EXPECT_FALSE(parsed(behind(1'000'000)));
}

TEST(Mp4TimingTest, WhatIsDamagedOrMissingIsNoTiming)
{
    const Bytes whole = movie(track(1, 44100, {}));
    EXPECT_TRUE(parsed(whole));
    EXPECT_FALSE(parsed({}));
    EXPECT_FALSE(parsed(Bytes(whole.begin(), whole.end() - 1))) << "cut off";
    EXPECT_FALSE(parsed(box("moov", track(1, 44100, {})))) << "no header of the movie";
    EXPECT_FALSE(parsed(movie(box("trak", header("tkhd", false, 1))))) << "no media";
    Bytes tooSmall = whole;
    tooSmall[3] = 7;  // the first box ends within its own header
    EXPECT_FALSE(parsed(tooSmall));
}

}  // namespace

}  // namespace tonvale::test
