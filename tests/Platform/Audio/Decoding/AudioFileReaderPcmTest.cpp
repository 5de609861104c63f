// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/AudioFileReader.h"
#include "Platform/Audio/Decoding/ReadAll.h"
#include "Platform/Foundation/PlatformError.h"
#include "Support/MusicFixtures.h"
#include "Support/Songs.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <vector>

namespace tonvale {

namespace {

using namespace test;

class Pcm : public testing::Test {
protected:
    TemporaryFolder folder_;
};

void put32(std::vector<std::uint8_t>& bytes, std::size_t offset, std::uint32_t value)
{
    for (std::size_t index = 0; index < 4; ++index) {
        bytes[offset + index] = static_cast<std::uint8_t>(value >> (8 * index));
    }
}

TEST_F(Pcm, OpenDataSizeOfStreamWritersMeansToTheEnd)
{
    const auto path = folder_.path() / "song.wav";
    const Recording song = makeRecording(5000);
    for (const std::uint32_t size : {0U, 0xFFFFFFFFU, 0x7FFFF000U}) {
        writeWave(path, song);
        auto bytes = readBytes(path);
        put32(bytes, 40, size);
        writeBytes(path, bytes);
        AudioFileReader reader(path);
        EXPECT_EQ(reader.length(), 5000) << size;
    }
}

/// A sparse file of 8-bit mono, whose header leaves the size open.
void writeLongSong(const std::filesystem::path& path, std::uint64_t frames)
{
    const std::vector<std::uint8_t> header = {'.',  's',  'n',  'd',  0, 0, 0, 24,
                                              0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 2,
                                              0,    0,    0x1F, 0x40, 0, 0, 0, 1};
    writeBytes(path, header);
    std::filesystem::resize_file(path, header.size() + frames);
}

TEST_F(Pcm, SongOfMoreFramesThanBuffersCountIsTooLarge)
{
    constexpr std::uint64_t most = 0xFFFFFFFF;
    const auto path = folder_.path() / "song.au";
    writeLongSong(path, most);
    EXPECT_EQ(AudioFileReader(path).length(), static_cast<std::int64_t>(most));
    writeLongSong(path, most + 1);
    try {
        const AudioFileReader reader(path);
        ADD_FAILURE() << "opened with " << reader.length() << " frames";
    } catch (const PlatformError& error) {
        EXPECT_EQ(error.errorDescription(), "File too large");
    }
}

TEST_F(Pcm, BytesBehindTheDataAreNoMusic)
{
    const auto path = folder_.path() / "song.wav";
    writeWave(path, makeRecording(5000));
    auto bytes = readBytes(path);
    bytes.insert(bytes.end(), {'L', 'I', 'S', 'T', 8, 0, 0, 0, 'a', 'd', 't', 'l', 0, 0, 0, 0});
    writeBytes(path, bytes);
    AudioFileReader reader(path);
    EXPECT_EQ(reader.length(), 5000);
}

TEST_F(Pcm, CutFileHasTheFramesThatAreThere)
{
    const auto path = folder_.path() / "song.wav";
    writeWave(path, makeRecording(5000));
    const auto bytes = readBytes(path);
    writeBytes(path, std::span(bytes).first(44 + 4 * 1234 + 3));
    AudioFileReader reader(path);
    EXPECT_EQ(reader.length(), 1234);
}

TEST_F(Pcm, EveryChannelAndRateIsKept)
{
    for (const int channels : {1, 2, 3, 4, 5, 6, 7, 8}) {
        for (const int rate : {8000, 44100, 192000}) {
            const auto path = folder_.path() / "song.wav";
            const Recording song = makeRecording(rate / 4 + 1, rate, channels);
            writeWave(path, song);
            AudioFileReader reader(path);
            EXPECT_EQ(reader.format().sampleRate, rate);
            ASSERT_EQ(reader.format().channelCount, static_cast<std::uint32_t>(channels));
            const Samples samples = readAll(reader, 777);
            for (std::size_t channel = 0; channel < samples.size(); ++channel) {
                for (std::size_t frame = 0; frame < samples[channel].size(); ++frame) {
                    ASSERT_EQ(samples[channel][frame],
                              static_cast<float>(song.channels[channel][frame]) / 32768.0F);
                }
            }
        }
    }
}

TEST_F(Pcm, EightChannelsComeOutOfFlacInTheirOrder)
{
    const Recording song = makeRecording(50000, 192000, 8);
    const auto path = MusicFixtures::shared().encode(musicFormat("flac"), song, "eight.flac");
    AudioFileReader reader(path);
    const Samples samples = readAll(reader);
    ASSERT_EQ(samples.size(), 8U);
    ASSERT_EQ(reader.length(), 50000);
    for (std::size_t channel = 0; channel < 8; ++channel) {
        EXPECT_EQ(samples[channel][1000], static_cast<float>(song.channels[channel][1000]) / 32768);
    }
}

TEST_F(Pcm, SongWithoutFramesIsEmptyAndKeepsItsFormat)
{
    for (const std::string name : {"empty.wav", "empty.aiff", "empty.caf"}) {
        const auto path = folder_.path() / name;
        writeSong(path, 32000, {{}, {}});
        AudioFileReader reader(path);
        EXPECT_EQ(reader.length(), 0) << name;
        EXPECT_EQ(reader.format(), (AudioFormat{32000, 2})) << name;
        EXPECT_TRUE(readAll(reader)[0].empty()) << name;
        writeSong(path, 32000, {{}});
        EXPECT_EQ(AudioFileReader(path).format(), (AudioFormat{32000, 1})) << name;
    }
}

}  // namespace

}  // namespace tonvale
