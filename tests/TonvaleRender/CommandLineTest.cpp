// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/CommandLine.h"

#include "TonvaleRender/HelpText.h"
#include "TonvaleRender/UsageError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <thread>
#include <vector>

namespace tonvale {
namespace {

CommandLine parse(std::vector<std::string> words)
{
    words.insert(words.begin(), "tonvale-render");
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    return parseCommandLine(arguments);
}

std::string refusalOf(const std::vector<std::string>& words)
{
    try {
        (void)parse(words);
    } catch (const UsageError& error) {
        return error.errorDescription();
    }
    return "(accepted)";
}

using ::testing::ElementsAre;

TEST(CommandLine, TakesTwoKeys)
{
    const RenderRequest request = parse({"Song.mp3", "--from", "C", "--to", "A minor"}).request;
    EXPECT_THAT(request.inputs, ElementsAre("Song.mp3"));
    EXPECT_EQ(request.sourceKey, MusicKey::cMajor);
    EXPECT_THAT(request.targetKeys, ElementsAre(MusicKey::aMinor));
    EXPECT_FALSE(request.detectsSourceKey());
    EXPECT_FALSE(request.output || request.replacesOutput || request.isQuiet);
}

TEST(CommandLine, TakesSemitonesWithAndWithoutSign)
{
    EXPECT_EQ(parse({"a", "--semitones", "3"}).request.cents, 300);
    EXPECT_EQ(parse({"a", "--semitones", "+3"}).request.cents, 300);
    EXPECT_EQ(parse({"a", "--semitones", "-6"}).request.cents, -600);
    EXPECT_EQ(parse({"a", "--semitones=-6"}).request.cents, -600);
    EXPECT_EQ(parse({"a", "--semitones", "0"}).request.cents, 0);
    EXPECT_TRUE(parse({"a", "--semitones", "0"}).request.countsSemitones);
}

TEST(CommandLine, TakesCents)
{
    EXPECT_EQ(parse({"--cents", "-150", "a"}).request.cents, -150);
    EXPECT_EQ(parse({"--cents", "600", "a"}).request.cents, 600);
    EXPECT_FALSE(parse({"--cents", "100", "a"}).request.countsSemitones);
}

TEST(CommandLine, TakesOptionsInAnyOrderAndNamesWithADashAfterTwoDashes)
{
    const RenderRequest request =
        parse({"--quiet", "-o", "out.wav", "--cents", "5", "--force", "--", "-song.wav"}).request;
    EXPECT_THAT(request.inputs, ElementsAre("-song.wav"));
    EXPECT_EQ(request.output, "out.wav");
    EXPECT_TRUE(request.replacesOutput);
    EXPECT_TRUE(request.isQuiet);
}

TEST(CommandLine, PutsHelpAndVersionBeforeEverythingElse)
{
    EXPECT_EQ(parse({"--help"}).action, CommandLine::Action::showHelp);
    EXPECT_EQ(parse({"--version", "--cents", "nonsense"}).action, CommandLine::Action::showVersion);
    EXPECT_EQ(parse({"--version", "--help"}).action, CommandLine::Action::showHelp);
    EXPECT_TRUE(helpText().starts_with("Usage: tonvale-render"));
    EXPECT_EQ(versionText(), "tonvale-render 1.0.0\n");
}

TEST(CommandLine, DetectsInPlaceOfTheRecordedKeyOrAlone)
{
    const CommandLine both = parse({"a", "--detect", "--to", "F#"});
    EXPECT_EQ(both.action, CommandLine::Action::render);
    EXPECT_TRUE(both.request.detectsSourceKey());
    EXPECT_THAT(both.request.targetKeys, ElementsAre(MusicKey::fSharpMajor));
    const CommandLine alone = parse({"a", "--detect"});
    EXPECT_EQ(alone.action, CommandLine::Action::detect);
    EXPECT_THAT(alone.request.inputs, ElementsAre("a"));
    EXPECT_FALSE(parse({"a", "--cents", "1"}).request.detectsSourceKey());
}

TEST(CommandLine, TakesManySongs)
{
    const CommandLine render = parse({"a", "--cents", "1", "b", "-o", "out/", "--", "-c"});
    EXPECT_THAT(render.request.inputs, ElementsAre("a", "b", "-c"));
    EXPECT_EQ(render.request.output, "out/");
    const CommandLine detection = parse({"a", "b", "--detect", "--jobs", "3", "--quiet"});
    EXPECT_THAT(detection.request.inputs, ElementsAre("a", "b"));
    EXPECT_EQ(detection.request.jobs, 3U);
    EXPECT_TRUE(detection.request.isQuiet);
}

TEST(CommandLine, TakesAllForTheTwelveKeysOfTheMode)
{
    const auto major = parse({"a", "--from", "F", "--to", "all"}).request.targetKeys;
    const auto minor = parse({"a", "--from", "f minor", "--to", "all"}).request.targetKeys;
    const auto heard = parse({"a", "--detect", "--to", "all"}).request;
    ASSERT_EQ(major.size(), 12U);
    ASSERT_EQ(minor.size(), 12U);
    for (std::size_t note = 0; note < 12; ++note) {
        EXPECT_EQ(major[note], MusicKey::allCases()[note]);
        EXPECT_EQ(minor[note], MusicKey::allCases()[12 + note]);
    }
    EXPECT_EQ(heard.targetKeys.size(), 12U);
    EXPECT_TRUE(heard.detectsSourceKey());
    EXPECT_NE(refusalOf({"a", "--from", "all", "--to", "C"}).find("\"all\" is not a key"),
              std::string::npos);
}

TEST(CommandLine, RunsAsManyJobsAsThereAreProcessorsUnlessToldOtherwise)
{
    EXPECT_EQ(parse({"a", "--cents", "1"}).request.jobs,
              std::max(1U, std::thread::hardware_concurrency()));
    EXPECT_EQ(parse({"a", "--cents", "1", "--jobs", "64"}).request.jobs, 64U);
    for (const std::string value : {"0", "65", "-1", "many", ""}) {
        EXPECT_NE(refusalOf({"a", "--cents", "1", "--jobs", value})
                      .find("--jobs takes a whole number from 1 to 64"),
                  std::string::npos)
            << value;
    }
}

TEST(CommandLine, RefusesNumbersOutOfRangeAndWhatIsNoNumber)
{
    for (const std::string value :
         {"7", "-7", "1.5", "", "three", "3 ", "+-3", "--3", "99999999999", "0x3"}) {
        EXPECT_NE(refusalOf({"a", "--semitones", value})
                      .find("--semitones takes a whole number from -6 to 6"),
                  std::string::npos)
            << value;
    }
    EXPECT_NE(refusalOf({"a", "--cents", "601"}).find("from -600 to 600"), std::string::npos);
}

TEST(CommandLine, RefusesAShiftThatIsMissingHalfOrDouble)
{
    const std::string onlyOne = "Give only one of keys, --semitones and --cents.";
    EXPECT_EQ(refusalOf({"a"}), "How far? Give --from and --to, or --semitones, or --cents.");
    EXPECT_EQ(refusalOf({"a", "--from", "C"}), "Which key should it be in? Add --to.");
    EXPECT_EQ(refusalOf({"a", "--to", "C"}), "Which key is it in? Add --from, or --detect.");
    EXPECT_EQ(refusalOf({"a", "--cents", "1", "--semitones", "1"}), onlyOne);
    EXPECT_EQ(refusalOf({"a", "--from", "C", "--to", "D", "--cents", "1"}), onlyOne);
    EXPECT_EQ(refusalOf({"a", "--detect", "--cents", "1"}), onlyOne);
    EXPECT_EQ(refusalOf({"a", "--detect", "--from", "C", "--to", "D"}),
              "Give only one of --from and --detect.");
    EXPECT_EQ(refusalOf({"a", "--detect", "-o", "out.wav"}),
              "Which key should it be in? Add --to.");
}

TEST(CommandLine, RefusesWrongUseWithASentenceThatNamesIt)
{
    EXPECT_EQ(refusalOf({"--cents", "1"}), "Which song? Name one audio file.");
    EXPECT_EQ(refusalOf({"a", "--cents"}), "\"--cents\" needs a value.");
    EXPECT_EQ(refusalOf({"a", "-o"}), "-o needs a value.");
    EXPECT_EQ(refusalOf({"a", "--loud"}), "\"--loud\" is not an option.");
    EXPECT_EQ(refusalOf({"a", "--\x1b[31mred\n"}), "\"--?[31mred?\" is not an option.");
    EXPECT_EQ(refusalOf({"a", "\u2014from", "C"}),
              "An option here begins with a long dash; type two short ones: --.");
    EXPECT_EQ(refusalOf({"a", "-x"}), "-x is not an option.");
    EXPECT_EQ(refusalOf({"a", "--quiet=yes"}), "\"--quiet=yes\" is an option that takes no value.");
    EXPECT_EQ(refusalOf({"a", "--cents", "1", "--cents", "2"}), "--cents is given twice.");
    EXPECT_NE(refusalOf({"a", "--from", "H", "--to", "C"}).find("write B for H"),
              std::string::npos);
}

TEST(CommandLine, RefusesAnEmptyCommandLineInsteadOfFailing)
{
    EXPECT_THROW((void)parseCommandLine({}), UsageError);
    EXPECT_EQ(refusalOf({}), "Which song? Name one audio file.");
}

}  // namespace
}  // namespace tonvale
