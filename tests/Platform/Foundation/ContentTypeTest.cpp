// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/ContentType.h"

#include "Support/MusicFixtures.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace tonvale {
namespace {

using namespace std::string_view_literals;

class ContentTypeTest : public ::testing::Test {
protected:
    std::filesystem::path write(const std::string& name, std::string_view bytes) const
    {
        std::ofstream(folder.path() / name, std::ios::binary) << bytes;
        return folder.path() / name;
    }

    /// "none", or the type's name and whether it is sound.
    static std::string described(const std::filesystem::path& file)
    {
        const auto type = contentType(file);
        return type ? type->name().toStdString() + (type->conformsToAudio() ? ", audio" : "")
                    : "none";
    }

    test::TemporaryFolder folder;
};

constexpr std::string_view mp4Start = "\0\0\0\x1c"
                                      "ftypisom\0\0\x02\0isomiso2mp41"sv;
constexpr std::string_view waveStart = "RIFF\x24\0\0\0WAVEfmt \x10\0\0\0\x01\0\x01\0"sv;

TEST_F(ContentTypeTest, IsThatOfTheContentWhateverTheName)
{
    EXPECT_EQ(described(write("song", waveStart)), "audio/x-wav, audio");
    EXPECT_EQ(described(write("song.txt", waveStart)), "audio/x-wav, audio");
    EXPECT_EQ(described(write("song.mp3", "Only words.\n")), "text/plain");
    EXPECT_EQ(described(write("song.wav", "%PDF-1.4\n")), "application/pdf");
    EXPECT_EQ(described(write("song.flac", "\x89PNG\r\n\x1a\n"sv)), "image/png");
}

TEST_F(ContentTypeTest, IsUnknownWhereTheContentTellsNothing)
{
    EXPECT_EQ(described(write("empty.wav", "")), "none");
    EXPECT_EQ(described(write("noise.mp3", "\x01\x02\x03\x04\0\0\0\0"sv)), "none");
}

TEST_F(ContentTypeTest, IsUnknownForWhatCannotBeRead)
{
    EXPECT_EQ(described(folder.path() / "missing.mp3"), "none");
    EXPECT_EQ(described(""), "none");
    EXPECT_EQ(described(write("file", "x") / "below"), "none");
    std::filesystem::create_symlink("nowhere", folder.path() / "link.mp3");
    EXPECT_EQ(described(folder.path() / "link.mp3"), "none");
    const auto pipe = folder.path() / "pipe.mp3";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(described(pipe), "none");  // and does not wait for one who writes
    EXPECT_EQ(described("/dev/null"), "none");
}

TEST_F(ContentTypeTest, OfAFolderIsKnown)
{
    std::filesystem::create_directory(folder.path() / "album.wav");
    EXPECT_EQ(described(folder.path() / "album.wav"), "inode/directory");
    std::filesystem::create_symlink("album.wav", folder.path() / "link.mp3");
    EXPECT_EQ(described(folder.path() / "link.mp3"), "inode/directory");
}

TEST_F(ContentTypeTest, OfAContainerIsDecidedByTheName)
{
    EXPECT_EQ(described(write("film.mp4", mp4Start)), "video/mp4");
    EXPECT_EQ(described(write("song.m4a", mp4Start)), "audio/mp4, audio");
    EXPECT_EQ(described(write("SONG.M4A", mp4Start)), "audio/mp4, audio");
    EXPECT_EQ(described(write("film", mp4Start)), "video/mp4");
}

TEST_F(ContentTypeTest, OfAPlayListIsNotSound)
{
    EXPECT_FALSE(ContentType("audio/x-mpegurl").conformsToAudio());
    EXPECT_FALSE(ContentType("audio/x-scpls").conformsToAudio());
    EXPECT_FALSE(ContentType("audio/x-ms-asx").conformsToAudio());
    EXPECT_TRUE(ContentType("audio/flac").conformsToAudio());
    EXPECT_FALSE(ContentType("video/mp4").conformsToAudio());
    EXPECT_FALSE(ContentType("no/such-type").conformsToAudio());
    for (const char* name : {"list.m3u", "list.mp3", "list"}) {
        const auto type = contentType(write(name, "#EXTM3U\n#EXTINF:1,x\nhttp://a.example/b\n"));
        ASSERT_TRUE(type.has_value()) << name;
        EXPECT_FALSE(type->conformsToAudio()) << name;
    }
}

TEST_F(ContentTypeTest, LooksAtFilesWhoseNamesAreNoText)
{
    EXPECT_EQ(described(write("caf\xe9.wav", waveStart)), "audio/x-wav, audio");
    EXPECT_EQ(described(write("caf\xe9.m4a", mp4Start)), "audio/mp4, audio");
}

TEST_F(ContentTypeTest, OfEverySongFormatIsSoundOrUnknownUnlessItsNameIsAFilms)
{
    const test::Recording song = test::makeRecording(22050);
    for (const test::MusicFormat& format : test::musicFormats()) {
        const auto file =
            test::MusicFixtures::shared().encode(format, song, "type-" + format.fileName);
        const std::string type = described(file);
        if (file.extension() == ".mov" || file.extension() == ".webm") {
            EXPECT_TRUE(type.starts_with("video/")) << type;
        } else {
            EXPECT_TRUE(type == "none" || type.ends_with(", audio")) << format.name << ": " << type;
        }
    }
}

}  // namespace
}  // namespace tonvale
