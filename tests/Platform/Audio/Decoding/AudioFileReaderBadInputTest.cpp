// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/AudioFileReader.h"
#include "Platform/Audio/Decoding/FFmpeg.h"
#include "Platform/Audio/Decoding/ReadAll.h"
#include "Platform/Foundation/PlatformError.h"
#include "Support/MusicFixtures.h"
#include "Support/Program.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace tonvale {

namespace {

using namespace test;

namespace fs = std::filesystem;

/// What opening fails with; empty when it does not.
std::string errorOf(const fs::path& path)
{
    try {
        const AudioFileReader reader(path);
        return {};
    } catch (const PlatformError& error) {
        return error.errorDescription();
    }
}

class BadInput : public testing::Test {
protected:
    fs::path write(const std::string& name, std::string_view text)
    {
        const fs::path path = folder_.path() / name;
        writeBytes(path, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
        return path;
    }

    TemporaryFolder folder_;
};

constexpr std::string_view invalidData = "Invalid data found when processing input";

TEST_F(BadInput, MissingFileIsNamedInTheSystemsWords)
{
    EXPECT_EQ(errorOf(folder_.path() / "nothing.mp3"), "No such file or directory");
}

TEST_F(BadInput, DirectoryIsRefused)
{
    EXPECT_EQ(errorOf(folder_.path()), "Is a directory");
}

TEST_F(BadInput, PipeIsRefusedWithoutWaitingForAWriter)
{
    const fs::path path = folder_.path() / "pipe.wav";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(errorOf(path), "Not a regular file");
}

TEST_F(BadInput, DeviceIsRefused)
{
    EXPECT_EQ(errorOf("/dev/zero"), "Not a regular file");
}

TEST_F(BadInput, AbsurdSampleRateIsInvalid)
{
    const auto path = folder_.path() / "fast.wav";
    writeWave(path, makeRecording(1000, 768000));
    EXPECT_EQ(errorOf(path), "");
    writeWave(path, makeRecording(1000, 1000000000));
    EXPECT_EQ(errorOf(path), invalidData);
}

TEST_F(BadInput, EmptyFileIsInvalid)
{
    EXPECT_EQ(errorOf(write("empty.wav", "")), invalidData);
}

TEST_F(BadInput, TextNamedAsMusicIsInvalid)
{
    std::string text;
    for (int line = 0; line < 5000; ++line) {
        text += "All work and no play makes for a dull song, line " + std::to_string(line) + ".\n";
    }
    for (const std::string name : {"song.mp3", "song.wav", "song.aac", "song.txt", "song.ogg"}) {
        EXPECT_EQ(errorOf(write(name, text)), invalidData) << name;
    }
}

TEST_F(BadInput, PlayListsAreNotFollowed)
{
    const std::string song = MusicFixtures::shared().file(musicFormat("wav16")).string();
    const std::string hls = "#EXTM3U\n#EXT-X-TARGETDURATION:10\n#EXT-X-MEDIA-SEQUENCE:0\n"
                            "#EXTINF:10,\nfile://"
                            + song + "\n#EXT-X-ENDLIST\n";
    const std::string concat = "ffconcat version 1.0\nfile '" + song + "'\n";
    const std::string sdp = "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nc=IN IP4 127.0.0.1\nt=0 0\n"
                            "m=audio 5004 RTP/AVP 0\n";
    for (const std::string& list : {hls, concat, sdp}) {
        for (const std::string name : {"list.mp3", "list.m3u8", "list.wav", "list.sdp"}) {
            EXPECT_EQ(errorOf(write(name, list)), invalidData) << name << ": " << list;
        }
    }
}

TEST_F(BadInput, RandomBytesAreInvalid)
{
    constexpr std::uint32_t seed = 20261121;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    std::string bytes(300000, '\0');
    std::ranges::generate(bytes, [&random] { return static_cast<char>(random()); });
    for (const std::string name : {"song.mp3", "song.aac", "song.flac", "song.m4a", "song.bin"}) {
        EXPECT_FALSE(errorOf(write(name, bytes)).empty()) << name;
    }
}

TEST_F(BadInput, VideoWithoutSoundSaysSo)
{
    const fs::path path = folder_.path() / "silent.mp4";
    ASSERT_EQ(runProgram({"ffmpeg", "-f", "lavfi", "-i", "testsrc=duration=1:size=64x64", "-an",
                          path.string()})
                  .exitStatus,
              0);
    EXPECT_EQ(errorOf(path), "The file holds no sound");
}

TEST_F(BadInput, MovieWithoutItsIndexIsInvalid)
{
    auto bytes = readBytes(MusicFixtures::shared().file(musicFormat("m4aAac")));
    const std::string_view name = "moov";
    const auto box = std::ranges::search(bytes, name).begin();
    ASSERT_NE(box, bytes.end());
    const fs::path path = folder_.path() / "no index.m4a";
    writeBytes(path, std::span(bytes).first(static_cast<std::size_t>(box - bytes.begin()) - 4));
    EXPECT_EQ(errorOf(path), invalidData);
}

TEST_F(BadInput, CoverPictureIsNotTheMusic)
{
    const fs::path picture = folder_.path() / "cover.png";
    ASSERT_EQ(runProgram({"ffmpeg", "-f", "lavfi", "-i", "testsrc=size=600x600", "-frames:v", "1",
                          picture.string()})
                  .exitStatus,
              0);
    for (const std::string name : {"mp3Constant", "m4aAac", "flac"}) {
        const MusicFormat& format = musicFormat(name);
        const fs::path song = MusicFixtures::shared().file(format);
        const fs::path target = folder_.path() / ("cover " + format.fileName);
        ASSERT_EQ(runProgram({"ffmpeg", "-i", song.string(), "-i", picture.string(), "-map", "1:v",
                              "-map", "0:a", "-c", "copy", "-disposition:v", "attached_pic",
                              target.string()})
                      .exitStatus,
                  0);
        AudioFileReader plain(song);
        AudioFileReader withCover(target);
        EXPECT_NEAR(static_cast<double>(plain.length()), static_cast<double>(withCover.length()),
                    1152);  // copying loses some padding
        const Samples samples = readFrames(withCover, 44100, 88200, 4096);
        EXPECT_GT(*std::ranges::max_element(samples.front()), 0.1F);
    }
}

TEST_F(BadInput, NamesAreBytes)
{
    const auto bytes = readBytes(MusicFixtures::shared().file(musicFormat("flac")));
    for (const std::string name :
         {"Key of F#.flac", "100%d.flac", "-dash.flac", "a:b.flac", "http:x.flac", "new\nline.flac",
          "quote'\".flac", "\xff\xfe.flac", "concat:a|b.flac", "?.flac", "no extension"}) {
        const fs::path path = folder_.path() / name;
        writeBytes(path, bytes);
        AudioFileReader reader(path);
        EXPECT_EQ(reader.length(), MusicFixtures::shared().song().length()) << name;
    }
}

TEST_F(BadInput, DeletedFileStaysReadable)
{
    const fs::path path = folder_.path() / "song.flac";
    writeBytes(path, readBytes(MusicFixtures::shared().file(musicFormat("flac"))));
    AudioFileReader reader(path);
    const Samples before = readAll(reader);
    fs::remove(path);
    EXPECT_EQ(readAll(reader), before);
}

using Bytes = std::vector<std::uint8_t>;

/// Where the first box or chunk of that name has its content.
std::size_t contentOf(const Bytes& bytes, std::string_view name)
{
    const auto found = std::ranges::search(bytes, name);
    EXPECT_FALSE(found.empty()) << name;
    return static_cast<std::size_t>(found.end() - bytes.begin());
}

void putBigEndian(Bytes& bytes, std::size_t offset, std::uint64_t value, std::size_t count)
{
    for (std::size_t index = 0; index < count; ++index) {
        bytes.at(offset + index) = static_cast<std::uint8_t>(value >> (8 * (count - 1 - index)));
    }
}

/// A song whose table of places is said to have more entries than there can be memory for.
Bytes songWithHugeTable()
{
    Bytes bytes = readBytes(MusicFixtures::shared().file(musicFormat("m4aAac")));
    putBigEndian(bytes, contentOf(bytes, "stco") + 4, 0xF0000001, 4);
    return bytes;
}

TEST_F(BadInput, TableLargerThanAnyMemoryIsInvalid)
{
    const fs::path path = folder_.path() / "song.m4a";
    writeBytes(path, songWithHugeTable());
    EXPECT_EQ(errorOf(path), invalidData);
}

TEST_F(BadInput, MemoryThatIsNotThereIsNoFaultOfTheFile)
{
    const fs::path path = folder_.path() / "song.m4a";
    writeBytes(path, songWithHugeTable());
    av_max_alloc(std::size_t{64} << 20U);
    const std::string error = errorOf(path);
    av_max_alloc(std::numeric_limits<int>::max());  // the library's own limit
    EXPECT_EQ(error, "Cannot allocate memory");
}

class FalseLength : public BadInput {
protected:
    static Bytes song(const std::string& format)
    {
        return readBytes(MusicFixtures::shared().file(musicFormat(format)));
    }

    std::int64_t lengthOf(const Bytes& bytes, const std::string& name)
    {
        const fs::path path = folder_.path() / name;
        writeBytes(path, bytes);
        return AudioFileReader(path).length();
    }

    static std::int64_t songLength() { return MusicFixtures::shared().song().length(); }
};

TEST_F(FalseLength, OfACafPacketTableIsNotBelieved)
{
    constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
    for (const std::uint64_t validFrames : {largest, largest / 2, std::uint64_t{1} << 63U}) {
        for (const std::uint64_t primingFrames : {0U, 1000U}) {
            Bytes bytes = song("cafAlac");
            const std::size_t table = contentOf(bytes, "pakt") + 8;  // behind the chunk's size
            putBigEndian(bytes, table + 8, validFrames, 8);
            putBigEndian(bytes, table + 16, primingFrames, 4);
            EXPECT_EQ(lengthOf(bytes, "song.caf"), songLength()) << validFrames;
        }
    }
}

/// An edit list of one entry with 64-bit times in place of the one with 32 bits.
Bytes withLongEdit(Bytes bytes, std::uint64_t duration, std::uint64_t mediaStart)
{
    constexpr std::size_t growth = 8;
    for (const std::string_view name : {"moov", "trak", "edts", "elst"}) {
        const std::size_t content = contentOf(bytes, name);
        const std::size_t size = content - 8;
        std::uint64_t old = 0;
        for (std::size_t index = size; index < size + 4; ++index) {
            old = old << 8U | bytes[index];
        }
        putBigEndian(bytes, size, old + growth, 4);
    }
    const std::size_t list = contentOf(bytes, "elst");
    bytes[list] = 1;  // the version
    bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(list) + 8, growth, 0);
    putBigEndian(bytes, list + 8, duration, 8);
    putBigEndian(bytes, list + 16, mediaStart, 8);
    return bytes;
}

TEST_F(FalseLength, OfAnEditListIsNotBelieved)
{
    constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
    const std::int64_t honest = lengthOf(withLongEdit(song("m4aAac"), 23000, 1024), "song.m4a");
    EXPECT_EQ(honest, 23 * 44100);
    for (const std::uint64_t start : {std::uint64_t{1024}, largest / 2, largest}) {
        const Bytes bytes = withLongEdit(song("m4aAac"), std::uint64_t{1} << 50U, start);
        const std::int64_t length = lengthOf(bytes, "song.m4a");
        EXPECT_GE(length, songLength()) << start;
        EXPECT_LT(length, songLength() + std::int64_t{3} * 1024) << start;
    }
}

TEST_F(FalseLength, TenTimesTheMusicIsNoticed)
{
    Bytes flac = song("flac");
    const std::size_t streamInfo = contentOf(flac, "fLaC") + 4;
    putBigEndian(flac, streamInfo + 14, static_cast<std::uint64_t>(10 * songLength()), 4);
    EXPECT_EQ(lengthOf(flac, "song.flac"), songLength());

    Bytes wavPack = song("wavpack");
    const auto frames = static_cast<std::uint32_t>(10 * songLength());
    for (std::size_t index = 0; index < 4; ++index) {
        wavPack[12 + index] = static_cast<std::uint8_t>(frames >> (8 * index));
    }
    const std::int64_t length = lengthOf(wavPack, "song.wv");
    EXPECT_GE(length, songLength());
    EXPECT_LT(length, songLength() + 22050);  // the last block counts as a full one

    Bytes alac = song("cafAlac");
    const std::size_t table = contentOf(alac, "pakt") + 8;  // behind the chunk's size
    putBigEndian(alac, table + 8, static_cast<std::uint64_t>(10 * songLength()), 8);
    EXPECT_EQ(lengthOf(alac, "song.caf"), songLength());
}

}  // namespace

}  // namespace tonvale
