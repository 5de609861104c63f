// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/FormatProbe.h"

#include "Platform/Audio/Decoding/ByteFile.h"
#include "Platform/Foundation/PlatformError.h"
#include "Support/MusicFixtures.h"

#include <gtest/gtest.h>

#include <string>

namespace tonvale::test {

namespace {

/// The format's name, or what the error says.
std::string recognised(const Bytes& bytes)
{
    const ByteFile file(bytes);
    try {
        return recogniseFormat(file.input()).name;
    } catch (const PlatformError& error) {
        return error.errorDescription();
    }
}

constexpr const char* invalidData = "Invalid data found when processing input";

Bytes wave()
{
    const TemporaryFolder folder;
    writeWave(folder.path() / "song.wav", makeRecording(1000));
    return readBytes(folder.path() / "song.wav");
}

/// A tag of players with so many bytes behind its header; a picture, mostly.
Bytes tag(std::size_t size)
{
    Bytes bytes = text("ID3\x04");
    append(bytes, Bytes{0, 0});
    for (int shift = 21; shift >= 0; shift -= 7) {
        bytes.push_back(static_cast<std::uint8_t>(size >> shift & 0x7FU));
    }
    bytes.resize(bytes.size() + size, 0xAA);
    return bytes;
}

TEST(FormatProbeTest, MusicIsRecognisedByItsBytes)
{
    EXPECT_EQ(recognised(wave()), "wav");
    EXPECT_EQ(recognised(readBytes(MusicFixtures::shared().file(musicFormat("flac")))), "flac");
}

TEST(FormatProbeTest, MusicIsRecognisedBehindTagsOfAnySize)
{
    for (const std::size_t size : {0U, 100U, 5000U, 70'000U, 2'000'000U}) {
        Bytes bytes = tag(size);
        append(bytes, wave());
        EXPECT_EQ(recognised(bytes), "wav") << size;
        Bytes twice = tag(3000);
        append(twice, bytes);
        EXPECT_EQ(recognised(twice), "wav") << size << ", the second one";
    }
}

TEST(FormatProbeTest, BareFramesAreRecognisedBehindJunk)
{
    const Bytes frames = readBytes(MusicFixtures::shared().file(musicFormat("mp3Bare")));
    for (const std::size_t size : {3000U, 30'000U, 300'000U}) {
        Bytes bytes(size, 0x55);
        append(bytes, frames);
        EXPECT_EQ(recognised(bytes), "mp3") << size;
    }
}

TEST(FormatProbeTest, WhatIsNoMusicIsInvalid)
{
    EXPECT_EQ(recognised({}), invalidData);
    EXPECT_EQ(recognised(Bytes(3'000'000, 0x55)), invalidData);
    EXPECT_EQ(recognised(text("I am no tag, and no music either.")), invalidData);
    Bytes picture = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A, 0, 0, 0, 13};
    append(picture, text("IHDR"));
    append(picture, Bytes(5000, 1));
    EXPECT_EQ(recognised(picture), invalidData) << "though the library knows pictures";
}

TEST(FormatProbeTest, AFormatHasSeveralNames)
{
    const AVInputFormat& mp4 = *av_find_input_format("mp4");
    EXPECT_TRUE(isNamed(mp4, "mov"));
    EXPECT_TRUE(isNamed(mp4, "m4a"));
    EXPECT_FALSE(isNamed(mp4, "wav"));
    EXPECT_TRUE(isOneOf(mp4, {"wav", "mov"}));
    EXPECT_FALSE(isOneOf(mp4, {"wav", "flac"}));
}

}  // namespace

}  // namespace tonvale::test
