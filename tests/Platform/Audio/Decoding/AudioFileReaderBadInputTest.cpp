// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/AudioFileReader.h"
#include "Platform/Audio/Decoding/ReadAll.h"
#include "Platform/Foundation/PlatformError.h"
#include "Support/MusicFixtures.h"
#include "Support/Program.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>

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
    const std::uint32_t seed = std::random_device()();
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

}  // namespace

}  // namespace tonvale
