// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/AudioFileReader.h"
#include "Platform/Audio/Decoding/ReadAll.h"
#include "Support/MusicFixtures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace tonvale {

namespace {

using namespace test;

using Bytes = std::vector<std::uint8_t>;

constexpr std::int64_t packetFrames = 1152;
constexpr std::int64_t decoderDelay = 529;

class Mp3 : public testing::Test {
protected:
    static Bytes song(const std::string& format)
    {
        return readBytes(MusicFixtures::shared().file(musicFormat(format)));
    }

    std::filesystem::path write(const Bytes& bytes)
    {
        const auto path = folder_.path() / "song.mp3";
        writeBytes(path, bytes);
        return path;
    }

    static std::int64_t songLength() { return MusicFixtures::shared().song().length(); }

    TemporaryFolder folder_;
};

Bytes joined(const Bytes& first, const Bytes& second)
{
    Bytes all = first;
    all.insert(all.end(), second.begin(), second.end());
    return all;
}

/// Where the info tag begins that an encoder put into the first packet.
std::size_t infoOffset(const Bytes& bytes)
{
    for (const std::string_view name : {"Xing", "Info"}) {
        const auto found = std::ranges::search(bytes, name);
        if (!found.empty()) {
            return static_cast<std::size_t>(found.begin() - bytes.begin());
        }
    }
    ADD_FAILURE() << "no info tag";
    return 0;
}

/// The tag's big-endian numbers, by their offset in it.
constexpr std::size_t packetCountField = 8;
constexpr std::size_t byteCountField = 12;

std::uint32_t told(const Bytes& bytes, std::size_t field)
{
    std::uint32_t value = 0;
    for (std::size_t index = 0; index < 4; ++index) {
        value = value << 8U | bytes[infoOffset(bytes) + field + index];
    }
    return value;
}

void lie(Bytes& bytes, std::size_t field, std::uint32_t value)
{
    const std::size_t offset = infoOffset(bytes) + field;
    for (std::size_t index = 0; index < 4; ++index) {
        bytes[offset + index] = static_cast<std::uint8_t>(value >> (24 - 8 * index));
    }
}

TEST_F(Mp3, TwoJoinedFilesAreBothHeard)
{
    AudioFileReader first(MusicFixtures::shared().file(musicFormat("mp3Constant")));
    AudioFileReader second(MusicFixtures::shared().file(musicFormat("mp3Variable")));
    AudioFileReader both(write(joined(song("mp3Constant"), song("mp3Variable"))));
    // Between the parts lies the padding of the first one's end and of the second one's start.
    EXPECT_GT(both.length(), first.length() + second.length());
    EXPECT_LT(both.length(), first.length() + second.length() + 4 * packetFrames);
    const Samples end = readFrames(both, both.length() - 400000, both.length() - 1000, 4096);
    const Samples expected = readAll(second);
    EXPECT_LE(largestDifference(end, expected, second.length() - 400000), 1e-4F);
    const Samples start = readFrames(both, 0, 400000, 4096);
    EXPECT_LE(largestDifference(start, readAll(first), 0), 1e-4F);
}

/// The largest of a channel's last frames.
float loudest(const std::vector<float>& samples, std::int64_t frames)
{
    const auto [least, most] = std::minmax_element(samples.end() - frames, samples.end());
    return std::max(-*least, *most);
}

TEST_F(Mp3, AJoinedPartOfOneChannelIsHeardOnBothSides)
{
    const auto mono = MusicFixtures::shared().encode(
        musicFormat("mp3Constant"), makeRecording(3 * 44100, 44100, 1), "mono.mp3");
    AudioFileReader reader(write(joined(song("mp3Constant"), readBytes(mono))));
    EXPECT_EQ(reader.format().channelCount, 2U);
    const Samples samples = readAll(reader);
    EXPECT_NE(samples[0], samples[1]);
    constexpr std::int64_t part = 2 * 44100;
    EXPECT_TRUE(std::equal(samples[0].end() - part, samples[0].end(), samples[1].end() - part));
    EXPECT_GT(loudest(samples[0], part), 0.3F);
}

TEST_F(Mp3, AJoinedPartOfAnotherRateIsSilent)
{
    const auto faster = MusicFixtures::shared().encode(
        musicFormat("mp3Constant"), makeRecording(3 * 48000, 48000), "faster.mp3");
    AudioFileReader reader(write(joined(song("mp3Constant"), readBytes(faster))));
    EXPECT_EQ(reader.format().sampleRate, 44100);
    EXPECT_GT(reader.length(), songLength() + 2 * 44100);
    const Samples samples = readAll(reader);
    EXPECT_EQ(loudest(samples[0], 2 * 44100), 0.0F);
    EXPECT_EQ(loudest(samples[1], 2 * 44100), 0.0F);
    EXPECT_GT(loudest(samples[1], 4 * 44100), 0.3F) << "the part before it is not";
}

TEST_F(Mp3, ByteCountThatDoesNotFitIsNotTrusted)
{
    for (const bool isTooLarge : {false, true}) {
        Bytes bytes = song("mp3Variable");
        const std::uint32_t byteCount = told(bytes, byteCountField);
        lie(bytes, byteCountField, isTooLarge ? byteCount + 30000 : byteCount - 30000);
        lie(bytes, packetCountField, told(bytes, packetCountField) + 100);
        AudioFileReader reader(write(bytes));
        // Counted, without the end padding that only a true tag can tell.
        EXPECT_GE(reader.length(), songLength());
        EXPECT_LT(reader.length(), songLength() + 2 * packetFrames);
    }
}

TEST_F(Mp3, PacketCountThatDoesNotFitIsNotTrusted)
{
    for (const std::string format : {"mp3Constant", "mp3Variable"}) {
        const Bytes honest = song(format);
        const std::uint32_t packets = told(honest, packetCountField);
        for (const std::uint32_t count :
             {0U, 1U, 100U, packets / 2, packets * 4 / 3, 2 * packets, 100000U, 0xFFFFFFFFU}) {
            Bytes bytes = honest;
            lie(bytes, packetCountField, count);
            AudioFileReader reader(write(bytes));
            EXPECT_GE(reader.length(), songLength()) << format << ", " << count << " packets";
            EXPECT_LT(reader.length(), songLength() + 2 * packetFrames)
                << format << ", " << count << " packets";
        }
    }
}

TEST_F(Mp3, PacketCountOfAConstantBitRateIsCheckedClosely)
{
    const Bytes honest = song("mp3Constant");
    for (const int difference : {-20, 20}) {
        Bytes bytes = honest;
        lie(bytes, packetCountField,
            told(honest, packetCountField) + static_cast<std::uint32_t>(difference));
        AudioFileReader reader(write(bytes));
        EXPECT_GE(reader.length(), songLength()) << difference;
        EXPECT_LT(reader.length(), songLength() + 2 * packetFrames) << difference;
    }
}

TEST_F(Mp3, TagsAtBothEndsDoNotMatter)
{
    Bytes leading(1010, 0xFF);
    constexpr std::array<std::uint8_t, 10> id3 = {'I', 'D', '3', 4, 0, 0, 0, 0, 7, 0x68};
    std::ranges::copy(id3, leading.begin());  // it says that 1000 bytes follow
    Bytes trailing(128, ' ');
    std::ranges::copy(std::string_view("TAG"), trailing.begin());
    AudioFileReader reader(write(joined(joined(leading, song("mp3Constant")), trailing)));
    EXPECT_EQ(reader.length(), songLength());
}

TEST_F(Mp3, JunkBetweenPacketsIsPassedOver)
{
    const Bytes whole = song("mp3Bare");
    AudioFileReader intact(write(whole));
    const std::int64_t length = intact.length();
    const Samples samples = readAll(intact);
    // Constant 128 kbit/s: a packet begins 417 or 418 bytes after another.
    const std::size_t middle = whole.size() / 2;
    Bytes bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(middle));
    bytes.insert(bytes.end(), 5000, 0x55);
    bytes.insert(bytes.end(), whole.begin() + static_cast<std::ptrdiff_t>(middle), whole.end());
    AudioFileReader reader(write(bytes));
    EXPECT_GE(reader.length(), length - packetFrames);
    EXPECT_LE(reader.length(), length);
    const Samples end = readFrames(reader, reader.length() - 100000, reader.length(), 4096);
    EXPECT_LE(largestDifference(end, samples, length - 100000), 1e-4F);
}

TEST_F(Mp3, BareFileIsCountedInPackets)
{
    AudioFileReader reader(MusicFixtures::shared().file(musicFormat("mp3Bare")));
    EXPECT_EQ(reader.length() % packetFrames, 0);
    EXPECT_GT(reader.length(), songLength() + decoderDelay);
}

}  // namespace

}  // namespace tonvale
