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

namespace tonvale {
namespace {

RenderRequest requestFor(const std::filesystem::path& input)
{
    RenderRequest request;
    request.input = input;
    return request;
}

TEST(OutputFile, IsNamedAfterTheNewKey)
{
    RenderRequest request = requestFor("/music/Night Song.mp3");
    request.targetKey = MusicKey::eFlatMajor;
    EXPECT_EQ(outputFor(request), "/music/Night Song - Key of Eb.wav");
    request.targetKey = MusicKey::fSharpMinor;
    EXPECT_EQ(outputFor(request), "/music/Night Song - Key of F#.wav");
}

TEST(OutputFile, IsNamedAfterTheShiftWhereNoKeyWasGiven)
{
    RenderRequest request = requestFor("Song.mp3");
    request.countsSemitones = true;
    request.cents = 300;
    EXPECT_EQ(outputFor(request), "Song (+3 semitones).wav");
    request.cents = -100;
    EXPECT_EQ(outputFor(request), "Song (-1 semitone).wav");
    request.cents = 0;
    EXPECT_EQ(outputFor(request), "Song (0 semitones).wav");
    request.countsSemitones = false;
    request.cents = -150;
    EXPECT_EQ(outputFor(request), "Song (-150 cents).wav");
}

TEST(OutputFile, LosesOnlyTheLastExtensionOfTheSong)
{
    RenderRequest request = requestFor("a.b.mp3");
    request.targetKey = MusicKey::cMajor;
    EXPECT_EQ(outputFor(request), "a.b - Key of C.wav");
    request.input = "noextension";
    EXPECT_EQ(outputFor(request), "noextension - Key of C.wav");
    request.input = "dir.with.dots/.mp3";
    EXPECT_EQ(outputFor(request), "dir.with.dots/.mp3 - Key of C.wav");
}

TEST(OutputFile, IsTheOneAskedFor)
{
    RenderRequest request = requestFor("Song.mp3");
    request.output = "elsewhere/out.aiff";
    EXPECT_EQ(outputFor(request), "elsewhere/out.aiff");
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
        RenderRequest request = requestFor(song);
        request.replacesOutput = isForced;
        try {
            checkOutput(output, request);
        } catch (const LocalizedError& error) {
            return error.errorDescription();
        }
        return "";
    }

    test::TemporaryFolder folder;
    std::filesystem::path song = makeFile("song.wav");
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
