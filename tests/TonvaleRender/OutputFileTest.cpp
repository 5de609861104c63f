// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/OutputFile.h"

#include "Platform/Foundation/LocalizedError.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace tonvale {
namespace {

TEST(OutputFile, MayBeAFolderThatIsThereOrEndsWithASlash)
{
    const test::TemporaryFolder folder;
    std::ofstream(folder.path() / "file.wav") << "content";
    std::filesystem::create_directory(folder.path() / "folder.wav");
    EXPECT_TRUE(isFolder(folder.path()));
    EXPECT_TRUE(isFolder(folder.path() / "folder.wav"));
    EXPECT_TRUE(isFolder("missing/"));
    EXPECT_FALSE(isFolder("missing"));
    EXPECT_FALSE(isFolder(folder.path() / "file.wav"));
    EXPECT_FALSE(isFolder(""));
}

TEST(OutputFile, HasItsFolderCreated)
{
    const test::TemporaryFolder folder;
    createFolder(folder.path() / "new" / "deep/");
    EXPECT_TRUE(std::filesystem::is_directory(folder.path() / "new" / "deep"));
    createFolder(folder.path() / "new/");
    std::ofstream(folder.path() / "file") << "content";
    for (const auto& output : {folder.path() / "file/", folder.path() / "file" / "new/",
                               std::filesystem::path("/proc/new/")}) {
        EXPECT_THROW(createFolder(output), LocalizedError) << output;
    }
}

class CheckOutput : public ::testing::Test {
protected:
    std::filesystem::path makeFile(const std::string& name)
    {
        const std::filesystem::path url = folder.path() / name;
        std::ofstream(url) << "content";
        return url;
    }

    std::string refusalOf(const std::filesystem::path& output, bool isForced = false)
    {
        try {
            checkOutput(output, InputFiles(songs), isForced);
        } catch (const LocalizedError& error) {
            return error.errorDescription();
        }
        return "";
    }

    test::TemporaryFolder folder;
    std::filesystem::path song = makeFile("song.wav");
    std::vector<std::filesystem::path> songs{song};
};

TEST_F(CheckOutput, AcceptsANewFileOfAKnownContainer)
{
    for (const std::string name : {"new.wav", "new.aif", "new.AIFF", "new.caf", "#%.WAV"}) {
        EXPECT_EQ(refusalOf(folder.path() / name), "") << name;
    }
}

TEST_F(CheckOutput, RefusesOtherExtensions)
{
    for (const std::string name : {"new.mp3", "new", ".wav", "new.wave", "new.wav.txt"}) {
        EXPECT_NE(refusalOf(folder.path() / name, true).find("must end in .wav"), std::string::npos)
            << name;
    }
}

TEST_F(CheckOutput, ReplacesAFileOnlyByForce)
{
    const std::filesystem::path existing = makeFile("existing.wav");
    EXPECT_EQ(refusalOf(existing),
              "\"" + existing.string() + "\" exists already; --force replaces it.");
    EXPECT_EQ(refusalOf(existing, true), "");
}

TEST_F(CheckOutput, NeverReplacesTheSongUnderAnyName)
{
    const std::filesystem::path hardLink = folder.path() / "hard.wav";
    const std::filesystem::path softLink = folder.path() / "soft.wav";
    std::filesystem::create_hard_link(song, hardLink);
    std::filesystem::create_symlink(song, softLink);
    for (const auto& output : {song, hardLink, softLink}) {
        EXPECT_NE(refusalOf(output, true).find("is the song itself"), std::string::npos) << output;
    }
}

TEST_F(CheckOutput, NeverReplacesAnotherOfTheSongs)
{
    songs.push_back(makeFile("other.wav"));
    for (const auto& output : songs) {
        EXPECT_EQ(refusalOf(output, true),
                  "\"" + output.string() + "\" is one of the songs and is left alone.");
    }
}

TEST_F(CheckOutput, LeavesWhatIsNoRegularFileAlone)
{
    const std::filesystem::path device = folder.path() / "device.wav";
    const std::filesystem::path pipe = folder.path() / "pipe.wav";
    const std::filesystem::path directory = folder.path() / "directory.wav";
    const std::filesystem::path dangling = folder.path() / "dangling.wav";
    std::filesystem::create_symlink("/dev/null", device);
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::filesystem::create_directory(directory);
    std::filesystem::create_symlink("nowhere", dangling);
    for (const auto& output : {device, pipe, directory, dangling}) {
        EXPECT_NE(refusalOf(output, true).find("is not a regular file"), std::string::npos)
            << output;
    }
}

TEST_F(CheckOutput, RefusesAFolderThatIsNotThere)
{
    EXPECT_NE(refusalOf(folder.path() / "missing" / "new.wav").find("its folder does not exist"),
              std::string::npos);
    EXPECT_NE(refusalOf(song / "new.wav").find("its folder does not exist"), std::string::npos);
}

TEST_F(CheckOutput, ShowsControlCharactersOfANameAsQuestionMarks)
{
    EXPECT_TRUE(refusalOf("two\nlines\x1b[2J.mp3").starts_with("\"two?lines?[2J.mp3\" "));
}

}  // namespace
}  // namespace tonvale
