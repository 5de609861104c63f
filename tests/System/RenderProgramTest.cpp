// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "System/RenderProgramFixture.h"

#include <fstream>

namespace tonvale {
namespace {

TEST_F(RenderProgram, TurnsASongIntoANewKeyAndSaysWhereItIs)
{
    makeSong("Night Song.wav");
    const ProgramResult result = render({"Night Song.wav", "--from", "C", "--to", "Eb"});
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    EXPECT_EQ(result.standardOutput, "Saved \"Night Song - Key of Eb.wav\"\n");
    EXPECT_EQ(result.standardError, "");
    expectTransposed("Night Song - Key of Eb.wav", 44100);
}

TEST_F(RenderProgram, NamesItsOutputAfterSemitonesAndCents)
{
    makeSong("song.wav", 2000);
    EXPECT_EQ(render({"song.wav", "--semitones", "3"}).exitStatus, 0);
    EXPECT_EQ(render({"song.wav", "--cents", "-150", "--quiet"}).standardOutput, "");
    EXPECT_TRUE(std::filesystem::exists(in("song (+3 semitones).wav")));
    EXPECT_TRUE(std::filesystem::exists(in("song (-150 cents).wav")));
}

TEST_F(RenderProgram, WritesOtherContainersWhereAskedTo)
{
    makeSong("song.wav", 9000);
    for (const std::string name : {"a.aif", "a.aiff", "a.caf", "a.WAV"}) {
        EXPECT_EQ(render({"song.wav", "--semitones", "3", "-o", name}).exitStatus, 0) << name;
        EXPECT_EQ(test::readSong(in(name)).channels[0].size(), 9000U) << name;
    }
}

class Detection : public RenderProgram {
protected:
    void SetUp() override { makeDemoTune("tune.wav"); }
};

TEST_F(Detection, PrintsTheKeyAndTheTempoOfASongInTwoLines)
{
    const ProgramResult result = render({"tune.wav", "--detect"});
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    EXPECT_TRUE(result.standardOutput.starts_with("Key  : C major - Confidence "));
    EXPECT_NE(result.standardOutput.find("%\nTempo  : "), std::string::npos);
    EXPECT_EQ(std::ranges::count(result.standardOutput, '\n'), 2) << result.standardOutput;
}

TEST_F(Detection, TakesThePlaceOfTheRecordedKey)
{
    const ProgramResult result = render({"tune.wav", "--detect", "--to", "Eb"});
    EXPECT_EQ(result.exitStatus, 0) << result.standardError;
    EXPECT_TRUE(result.standardOutput.ends_with("Saved \"tune - Key of Eb.wav\"\n"));
    EXPECT_EQ(render({"tune.wav", "--semitones", "3", "--quiet"}).exitStatus, 0);
    EXPECT_EQ(test::readSong(in("tune - Key of Eb.wav")).channels,
              test::readSong(in("tune (+3 semitones).wav")).channels);
}

TEST_F(Detection, SaysWhyASongCannotBeListenedTo)
{
    std::ofstream(in("text.mp3")) << "This is not a song.\n";
    expectOneSentence(render({"text.mp3", "--detect"}));
    expectOneSentence(render({"missing.mp3", "--detect", "--to", "C"}));
}

TEST_F(RenderProgram, AnswersHelpAndVersion)
{
    const ProgramResult help = render({"--help"});
    EXPECT_EQ(help.exitStatus, 0);
    EXPECT_TRUE(help.standardOutput.starts_with("Usage: tonvale-render INPUT... "));
    const ProgramResult version = render({"--version"});
    EXPECT_EQ(version.exitStatus, 0);
    EXPECT_EQ(version.standardOutput, "tonvale-render " TONVALE_VERSION "\n");
}

TEST_F(RenderProgram, AnswersWrongUseByStatusTwo)
{
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{
             {},
             {"a.wav"},
             {"a.wav", "--semitones", "7"},
             {"a.wav", "--from", "H", "--to", "C"},
             {"a.wav", "--louder"},
             {"a.wav", "b.wav", "--cents", "1"}}) {  // neither is there
        const ProgramResult result = render(arguments);
        EXPECT_EQ(result.exitStatus, 2);
        EXPECT_EQ(result.standardOutput, "");
        EXPECT_EQ(std::ranges::count(result.standardError, '\n'), 1) << result.standardError;
    }
}

TEST_F(RenderProgram, ReplacesAnOutputOnlyByForce)
{
    makeSong("song.wav", 2000);
    makeSong("result.wav", 10);
    const std::vector<std::string> arguments{"song.wav", "--cents", "1", "-o", "result.wav"};
    expectOneSentence(render(arguments));
    EXPECT_EQ(test::readSong(in("result.wav")).channels[0].size(), 10U);
    std::vector<std::string> forced = arguments;
    forced.push_back("--force");
    EXPECT_EQ(render(forced).exitStatus, 0);
    EXPECT_EQ(test::readSong(in("result.wav")).channels[0].size(), 2000U);
}

TEST_F(RenderProgram, NeverTouchesTheSongItselfNorADevice)
{
    makeSong("song.wav", 2000);
    std::filesystem::create_hard_link(in("song.wav"), in("link.wav"));
    std::filesystem::create_symlink("/dev/null", in("device.wav"));
    for (const std::string output : {"song.wav", "./song.wav", "link.wav", "device.wav"}) {
        expectOneSentence(render({"song.wav", "--cents", "1", "-o", output, "--force"}));
    }
    EXPECT_EQ(test::readSong(in("song.wav")).channels[0].size(), 2000U);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
    EXPECT_TRUE(std::filesystem::is_symlink(in("device.wav")));
}

TEST_F(RenderProgram, TakesAnyNameThatAFileCanHave)
{
    for (const std::string name :
         {"with blanks.wav", "F#.wav", "100%.wav", "it's \"quoted\".wav", "two\nlines.wav",
          "Gr\xC3\xBC\xC3\x9F"
          "e \xE6\xAD\x8C.wav",
          "\xFF\xFE not utf-8.wav", "-dash.wav", "a:b.wav", "http:song.wav", "concat:song.wav",
          ".hidden.wav"}) {
        makeSong(name, 1500);
        const ProgramResult result = render({"--semitones", "1", "-o", "out.wav", "--", name});
        EXPECT_EQ(result.exitStatus, 0) << name << ": " << result.standardError;
        EXPECT_EQ(test::readSong(in("out.wav")).channels[0].size(), 1500U) << name;
        std::filesystem::remove(in("out.wav"));
        EXPECT_EQ(render({"--from", "C", "--to", "Db", "--", name}).exitStatus, 0) << name;
        const std::string stem = name.substr(0, name.rfind('.'));
        EXPECT_TRUE(std::filesystem::exists(in(stem + " - Key of C#.wav"))) << name;
    }
}

TEST_F(RenderProgram, DrawsItsProgressOnATerminalOnly)
{
    makeSong("song.wav", 44100 * 60);
    if (!hasTerminals()) {
        GTEST_SKIP() << "there are no pseudo-terminals here";
    }
    const ProgramResult result = renderOnTerminal("song.wav --semitones 1 -o out.wav");
    EXPECT_EQ(result.exitStatus, 0);
    EXPECT_NE(result.standardOutput.find(" %  0:"), std::string::npos) << result.standardOutput;
    EXPECT_NE(result.standardOutput.find("Saved \"out.wav\""), std::string::npos);
}

}  // namespace
}  // namespace tonvale
