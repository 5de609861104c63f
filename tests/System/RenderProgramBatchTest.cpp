// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "System/RenderProgramFixture.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace tonvale {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;

class RenderProgramBatch : public RenderProgram {
protected:
    [[nodiscard]] std::set<std::string> filesIn(const std::string& name) const
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(in(name))) {
            names.insert(entry.path().filename());
        }
        return names;
    }

    static std::ptrdiff_t linesOf(const std::string& text)
    {
        return std::ranges::count(text, '\n');
    }
};

TEST_F(RenderProgramBatch, RendersManySongsBesideThem)
{
    std::filesystem::create_directory(in("other"));
    makeSong("a.wav");
    makeSong("other/a.wav");
    makeSong("b.wav");
    const ProgramResult result =
        render({"a.wav", "other/a.wav", "b.wav", "--from", "C", "--to", "Eb"});
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    EXPECT_EQ(result.standardError, "");
    for (const std::string name : {"a", "other/a", "b"}) {
        EXPECT_THAT(result.standardOutput, HasSubstr("Saved \"" + name + " - Key of Eb.wav\"\n"));
        expectTransposed(name + " - Key of Eb.wav", 44100);
    }
    EXPECT_THAT(result.standardOutput, EndsWith("\n3 saved, 0 failed\n"));
    EXPECT_EQ(linesOf(result.standardOutput), 4);
}

TEST_F(RenderProgramBatch, RendersTheSameBesideOtherRendersAsAlone)
{
    makeSong("song.wav");
    EXPECT_EQ(render({"song.wav", "--from", "C", "--to", "all", "-o", "beside/", "--jobs", "5"})
                  .exitStatus,
              0);
    for (const std::string key : {"C", "Eb", "F#", "B"}) {
        const std::string name = "song - Key of " + key + ".wav";
        EXPECT_EQ(render({"song.wav", "--from", "C", "--to", key, "--quiet"}).exitStatus, 0);
        EXPECT_EQ(test::readSong(in("beside/" + name)).channels, test::readSong(in(name)).channels);
    }
}

TEST_F(RenderProgramBatch, RendersAllTwelveKeysIntoAFolderThatItCreates)
{
    makeSong("song.wav", 2000);
    const ProgramResult result =
        render({"song.wav", "--from", "A minor", "--to", "all", "-o", "new/keys/"});
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    std::set<std::string> expected;
    for (const std::string key :
         {"C", "C#", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B"}) {
        expected.insert("song - Key of " + key + ".wav");
    }
    EXPECT_EQ(filesIn("new/keys"), expected);
    EXPECT_THAT(result.standardOutput, EndsWith("\n12 saved, 0 failed\n"));
}

TEST_F(RenderProgramBatch, SavesOneSongIntoAFolderWithoutSummingUp)
{
    makeSong("song.wav", 2000);
    std::filesystem::create_directory(in("there"));
    const ProgramResult result = render({"song.wav", "--cents", "5", "-o", "there"});
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    EXPECT_EQ(result.standardOutput, "Saved \"there/song (+5 cents).wav\"\n");
    EXPECT_EQ(filesIn("there"), std::set<std::string>{"song (+5 cents).wav"});
}

TEST_F(RenderProgramBatch, GoesOnWhenASongFails)
{
    makeSong("a.wav", 2000);
    makeSong("b.wav", 2000);
    makeSong("taken.wav", 2000);
    makeSong("taken (+1 cent).wav", 10);
    std::ofstream(in("text.mp3")) << "This is not a song.\n";
    const ProgramResult result = render(
        {"text.mp3", "a.wav", "missing.wav", "taken.wav", "b.wav", "--cents", "1", "--jobs", "2"});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(std::filesystem::exists(in("a (+1 cent).wav")));
    EXPECT_TRUE(std::filesystem::exists(in("b (+1 cent).wav")));
    EXPECT_EQ(test::readSong(in("taken (+1 cent).wav")).channels[0].size(), 10U);
    EXPECT_THAT(result.standardOutput, EndsWith("\n2 saved, 3 failed\n"));
    EXPECT_EQ(linesOf(result.standardError), 3) << result.standardError;
    EXPECT_THAT(result.standardError,
                HasSubstr("tonvale-render: Could not render \"missing.wav\" into "));
    EXPECT_THAT(result.standardError, HasSubstr("\"text.mp3\""));
    EXPECT_THAT(result.standardError, HasSubstr("exists already; --force replaces it."));
}

TEST_F(RenderProgramBatch, TellsOnceOfASongThatFailsInEveryKey)
{
    makeSong("song.wav", 2000);
    std::ofstream(in("text.mp3")) << "This is not a song.\n";
    const ProgramResult result =
        render({"text.mp3", "song.wav", "--from", "C", "--to", "all", "-o", "out/"});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(linesOf(result.standardError), 1) << result.standardError;
    EXPECT_THAT(result.standardOutput, EndsWith("\n12 saved, 12 failed\n"));
}

TEST_F(RenderProgramBatch, IsSilentWhenAskedTo)
{
    makeSong("a.wav", 2000);
    const ProgramResult result = render({"a.wav", "missing.wav", "--cents", "1", "--quiet"});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.standardOutput, "");
    EXPECT_EQ(linesOf(result.standardError), 1) << result.standardError;
}

TEST_F(RenderProgramBatch, RefusesBeforeItWritesAnything)
{
    std::filesystem::create_directory(in("x"));
    makeSong("a.wav", 2000);
    makeSong("b.wav", 2000);
    makeSong("x/a.wav", 2000);
    const std::set<std::string> before = filesIn("");
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"a.wav", "x/a.wav", "--cents", "1", "-o", "out/"},
                                               {"a.wav", "./a.wav", "--cents", "1"},
                                               {"a.wav", "b.wav", "--cents", "1", "-o", "out.wav"},
                                               {"My", "Song.mp3", "--cents", "1"},
                                               {"My", "Song.mp3", "--detect"}}) {
        const ProgramResult result = render(arguments);
        EXPECT_EQ(result.exitStatus, 2) << result.standardError;
        EXPECT_EQ(result.standardOutput, "");
        EXPECT_EQ(linesOf(result.standardError), 1) << result.standardError;
        EXPECT_EQ(filesIn(""), before);
    }
    expectOneSentence(render({"a.wav", "b.wav", "--cents", "1", "-o", "a.wav/"}));
    EXPECT_EQ(filesIn(""), before);
}

TEST_F(RenderProgramBatch, ReplacesNoneOfTheSongsEvenByForce)
{
    makeSong("a.wav", 2000);
    makeSong("a - Key of D.wav", 3000);
    const ProgramResult result =
        render({"a.wav", "a - Key of D.wav", "--from", "C", "--to", "D", "--force"});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.standardError, HasSubstr("is one of the songs and is left alone."));
    EXPECT_EQ(test::readSong(in("a - Key of D.wav")).channels[0].size(), 3000U);
    EXPECT_TRUE(std::filesystem::exists(in("a - Key of D - Key of D.wav")));
}

class BatchDetection : public RenderProgramBatch {
protected:
    void SetUp() override
    {
        makeDemoTune("a.wav");
        std::filesystem::copy_file(in("a.wav"), in("b.wav"));
        std::ofstream(in("text.mp3")) << "This is not a song.\n";
    }
};

TEST_F(BatchDetection, PrintsTheSongsInTheirOrderUnderTheirNames)
{
    const ProgramResult result = render({"a.wav", "text.mp3", "b.wav", "--detect", "--jobs", "3"});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_TRUE(result.standardOutput.starts_with("\"a.wav\"\nKey  : C major - Confidence "));
    EXPECT_THAT(result.standardOutput, HasSubstr("\n\"b.wav\"\nKey  : C major - Confidence "));
    EXPECT_THAT(result.standardOutput, EndsWith("\n2 detected, 1 failed\n"));
    EXPECT_EQ(linesOf(result.standardOutput), 7) << result.standardOutput;
    EXPECT_EQ(linesOf(result.standardError), 1) << result.standardError;
}

TEST_F(BatchDetection, FindsTheKeyOfEachSong)
{
    const ProgramResult result =
        render({"a.wav", "text.mp3", "b.wav", "--detect", "--to", "D", "-o", "out/"});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.standardOutput, HasSubstr("\"b.wav\"\nKey  : C major - Confidence "));
    EXPECT_THAT(result.standardOutput, EndsWith("\n2 saved, 1 failed\n"));
    EXPECT_EQ(render({"a.wav", "--semitones", "2", "--quiet"}).exitStatus, 0);
    for (const std::string name : {"out/a - Key of D.wav", "out/b - Key of D.wav"}) {
        EXPECT_EQ(test::readSong(in(name)).channels,
                  test::readSong(in("a (+2 semitones).wav")).channels);
    }
}

TEST_F(BatchDetection, ListensOnceForAllKeys)
{
    const ProgramResult result = render({"a.wav", "--detect", "--to", "all", "-o", "out/"});
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    EXPECT_TRUE(result.standardOutput.starts_with("Key  : C major - Confidence "));
    EXPECT_EQ(linesOf(result.standardOutput), 2 + 12 + 1) << result.standardOutput;
    EXPECT_EQ(filesIn("out").size(), 12U);
}

TEST_F(BatchDetection, DoesNotListenToASongWhoseResultsMayNotBeWritten)
{
    makeSong("a - Key of D.wav", 10);
    const ProgramResult result = render({"a.wav", "text.mp3", "--detect", "--to", "D"});
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_EQ(result.standardOutput, "0 saved, 2 failed\n");
}

class InterruptedBatch : public RenderProgramBatch, public ::testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(RenderProgram, InterruptedBatch, ::testing::Values(SIGINT, SIGTERM));

TEST_P(InterruptedBatch, RemovesTheUnfinishedOutputsOfAllJobsAndKeepsTheOthers)
{
    makeSong("short.wav", 2000);
    makeEndlessSong("long.wav");
    makeEndlessSong("long 2.wav");
    std::filesystem::create_directory(in("out"));
    ProgramOptions options;
    options.folder = folder.path();
    std::optional<test::RunningProgram> program;
    // The short song comes first of all, so it is whole by the time the second long one begins.
    waitForFiles(in("out"), {"long (+1 cent).wav", "long 2 (+1 cent).wav"}, [&] {
        program.emplace(std::vector<std::string>{TONVALE_RENDER, "short.wav", "long.wav",
                                                 "long 2.wav", "missing.wav", "--cents", "1", "-o",
                                                 "out", "--jobs", "2"},
                        options);
    });
    program->sendSignal(GetParam());
    const ProgramResult result = program->wait();
    EXPECT_EQ(result.signalNumber, GetParam());
    EXPECT_EQ(result.standardOutput, "Saved \"out/short (+1 cent).wav\"\n");
    EXPECT_EQ(result.standardError, "");
    EXPECT_EQ(filesIn("out"), std::set<std::string>{"short (+1 cent).wav"});
}

TEST_F(RenderProgramBatch, DoesNotWaitForASongThatCannotBeOpenedWhenInterrupted)
{
    const std::filesystem::path pipe = in("pipe.wav");
    makeEndlessSong("long.wav");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);  // whoever opens it waits for a writer
    ProgramOptions options;
    options.folder = folder.path();
    std::optional<test::RunningProgram> program;
    waitForFiles(folder.path(), {"long (+1 cent).wav"}, [&] {
        program.emplace(std::vector<std::string>{TONVALE_RENDER, "pipe.wav", "long.wav", "--cents",
                                                 "1", "--jobs", "2"},
                        options);
    });
    program->sendSignal(SIGTERM);
    EXPECT_EQ(program->wait().signalNumber, SIGTERM);
    EXPECT_FALSE(std::filesystem::exists(in("long (+1 cent).wav")));
}

TEST_F(RenderProgramBatch, DrawsOneBarForAllSongs)
{
    makeSong("a.wav", 44100 * 30);
    makeSong("b.wav", 44100 * 30);
    if (!hasTerminals()) {
        GTEST_SKIP() << "there are no pseudo-terminals here";
    }
    const ProgramResult result = renderOnTerminal("a.wav missing.wav b.wav --cents 1");
    EXPECT_EQ(result.exitStatus, 1);
    EXPECT_THAT(result.standardOutput, HasSubstr(" of 3\r\x1b[KSaved \"a (+1 cent).wav\"\r\n"));
    EXPECT_THAT(result.standardOutput, EndsWith("(+1 cent).wav\"\r\n2 saved, 1 failed\r\n"));
}

}  // namespace
}  // namespace tonvale
