// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/EssentiaKeyDetector.h"

#include "Support/DetectionFailure.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace tonvale {
namespace {

namespace detail = EssentiaKeyDetector::detail;
using Error = EssentiaKeyDetectorError;

std::string parsedOrDescription(std::string_view output)
{
    try {
        const DetectedSongDetails details = detail::parseDetails(output);
        return std::string(details.musicKey().rawValue()) + " "
               + std::to_string(details.keyConfidence())
               + (details.bpm() ? " " + std::to_string(*details.bpm()) : "");
    } catch (const LocalizedError& error) {
        return error.errorDescription();
    }
}

const std::string unreadable = "The key detector returned an unreadable result.";

TEST(EssentiaKeyDetectorError, SaysWhatWentWrong)
{
    EXPECT_EQ(Error::unsupportedKey("H", "minor").errorDescription(),
              "Detected H minor, but it could not be mapped to the app's key list.");
    EXPECT_EQ(Error::helperFailed("It broke.\n").errorDescription(), "It broke.\n");
    EXPECT_EQ(Error::helperFailed(" ").errorDescription(), " ");
    EXPECT_EQ(Error::helperFailed("").errorDescription(), "Key detection failed.");
    EXPECT_EQ(Error::missingResources().errorDescription(),
              "Key detection resources are missing from the app bundle.");
    EXPECT_EQ(Error::unreadableOutput().errorDescription(), unreadable);
}

TEST(EssentiaKeyDetectorError, ShowsTheWordsAsTheyWerePrinted)
{
    EXPECT_EQ(Error::unsupportedKey(" h ", "").errorDescription(),
              "Detected  h  , but it could not be mapped to the app's key list.");
    EXPECT_EQ(Error::unsupportedKey("c", "MINOR\n").errorDescription(),
              "Detected c MINOR\n, but it could not be mapped to the app's key list.");
}

TEST(EssentiaKeyDetectorError, EqualsOnlyTheSameCaseWithTheSameWords)
{
    EXPECT_EQ(Error::helperFailed("a"), Error::helperFailed("a"));
    EXPECT_FALSE(Error::helperFailed("a") == Error::helperFailed("b"));
    EXPECT_FALSE(Error::helperFailed("") == Error::unreadableOutput());
    EXPECT_FALSE(Error::unsupportedKey("H", "x") == Error::unsupportedKey("H", "y"));
}

class ResourceRoot : public ::testing::Test {
protected:
    ResourceRoot() { std::filesystem::create_directory(resources); }

    static void addHelper(const std::filesystem::path& root)
    {
        std::filesystem::create_directories(root);
        std::ofstream(root / "detect_key.py") << "pass\n";
    }

    std::filesystem::path found() const
    {
        return detail::keyDetectionResourceRoot(resources, source);
    }

    test::TemporaryFolder folder;
    std::filesystem::path resources = folder.path() / "share";
    std::filesystem::path installed = resources / "KeyDetection";
    std::filesystem::path source = folder.path() / "tree/Sources/Module/File.cpp";
    std::filesystem::path inTree = folder.path() / "tree/Resources/KeyDetection";
};

TEST_F(ResourceRoot, IsTheInstalledOneFirst)
{
    addHelper(installed);
    EXPECT_EQ(found(), installed);
    addHelper(inTree);
    EXPECT_EQ(found(), installed);
}

TEST_F(ResourceRoot, IsElseTheOneInTheSourceTree)
{
    addHelper(inTree);
    EXPECT_EQ(found(), inTree);
    EXPECT_EQ(detail::keyDetectionResourceRoot(std::nullopt, source), inTree);
}

TEST_F(ResourceRoot, IsMissingWhereNeitherHoldsTheHelper)
{
    EXPECT_THROW(static_cast<void>(found()), Error);
    try {
        static_cast<void>(detail::keyDetectionResourceRoot(std::nullopt, source));
        FAIL() << "found one";
    } catch (const Error& error) {
        EXPECT_EQ(error, Error::missingResources());
    }
}

TEST_F(ResourceRoot, CountsByItsScriptAlone)
{
    std::filesystem::create_directories(installed / "EssentiaPython");
    addHelper(inTree);
    EXPECT_EQ(found(), inTree);  // the package without the script does not count
    addHelper(installed);
    std::filesystem::remove(installed / "EssentiaPython");
    EXPECT_EQ(found(), installed);  // the script without the package does
}

TEST_F(ResourceRoot, TakesAnyEntryThatHasTheScriptsName)
{
    std::filesystem::create_directories(installed / "detect_key.py");
    EXPECT_EQ(found(), installed);
    std::filesystem::remove(installed / "detect_key.py");
    std::filesystem::create_symlink("nowhere", installed / "detect_key.py");
    EXPECT_THROW(static_cast<void>(found()), Error);
}

TEST_F(ResourceRoot, IsSoughtInTheTreeThatThisProgramWasBuiltFrom)
{
    const std::filesystem::path file = detail::sourceFile();
    EXPECT_TRUE(file.is_absolute());
    EXPECT_TRUE(std::filesystem::is_regular_file(file)) << file;
    EXPECT_TRUE(file.string().ends_with("/Sources/Tonvale/EssentiaKeyDetector.cpp")) << file;
}

TEST(DecodeUtf8, KeepsValidTextByteForByte)
{
    using namespace std::string_literals;
    const std::string bom = "\xef\xbb\xbf";
    for (const std::string& text : {""s, "line\r\n"s, "a\0b"s, "\xc3\xa9 \xf0\x9f\x8e\xb5"s,
                                    bom + "text", "\xef\xbf\xbd"s, "\xf4\x8f\xbf\xbf"s}) {
        EXPECT_EQ(detail::decodeUtf8(text), text);
    }
}

TEST(DecodeUtf8, MakesInvalidTextEmpty)
{
    // In turn: no start byte, cut short, cut short before more text, Latin-1, overlong, a
    // surrogate, beyond the last code point.
    for (const char* text : {"good\xff", "good\xc3", "\xf0\x9f\x8e good", "caf\xe9!", "\xc0\x80",
                             "\xed\xa0\x80", "\xf4\x90\x80\x80"}) {
        EXPECT_EQ(detail::decodeUtf8(text), "") << text;
    }
}

TEST(ParseError, FindsTheHelpersMessage)
{
    EXPECT_EQ(detail::parseError(R"({"error": "No sound."})"), "No sound.");
    EXPECT_EQ(detail::parseError("\n {\"x\": 1, \"error\": \" caf\\u00e9 \\n\"} \n"),
              " caf\xc3\xa9 \n");
    EXPECT_EQ(detail::parseError(R"({"error": ""})"), "");
}

TEST(ParseError, FindsNoMessageInAnythingElse)
{
    for (const char* text :
         {"", "error", "{}", R"({"error": 3})", R"({"error": null})", R"({"error": ["a"]})",
          R"({"error": {"error": "a"}})", R"({"Error": "a"})", R"([{"error": "a"}])",
          R"(["error"])", R"("error")", R"({"error": "a"} b)", R"(b {"error": "a"})",
          R"({"error": "a")", "{\"error\": \"\xff\"}", "{\"\xff\": 1, \"error\": \"a\"}",
          "{\"error\": \"a\"}\xff"}) {
        EXPECT_EQ(detail::parseError(text), std::nullopt) << text;
    }
}

TEST(ParseDetails, TakesTheMembersAsTheyAre)
{
    const DetectedSongDetails details = detail::parseDetails(
        R"( {"bpm": 121.7, "key": "A", "scale": "minor", "keyConfidence": 0.82, "more": [1]} )");
    EXPECT_EQ(details.musicKey(), MusicKey::aMinor);
    EXPECT_EQ(details.keyConfidence(), 0.82);
    EXPECT_EQ(details.bpm(), 121.7);
}

TEST(ParseDetails, NeitherClampsNorRounds)
{
    const DetectedSongDetails details = detail::parseDetails(
        R"({"key": "Bb", "scale": "major", "keyConfidence": -17.125, "bpm": -0.4})");
    EXPECT_EQ(details.musicKey(), MusicKey::bFlatMajor);
    EXPECT_EQ(details.keyConfidence(), -17.125);
    EXPECT_EQ(details.bpm(), -0.4);
}

TEST(ParseDetails, WidensIntegers)
{
    EXPECT_EQ(parsedOrDescription(R"({"key":"C","scale":"major","keyConfidence":1,"bpm":120})"),
              "cMajor 1.000000 120.000000");
}

TEST(ParseDetails, KnowsNoTempoUnlessItIsANumber)
{
    const std::string start = R"({"key":"A","scale":"minor","keyConfidence":0.5)";
    for (const char* rest : {"}", R"(,"bpm":"121"})", R"(,"bpm":null})", R"(,"bpm":true})",
                             R"(,"bpm":[121]})", R"(,"bpm":{}})", R"(,"BPM":121})"}) {
        EXPECT_EQ(parsedOrDescription(start + rest), "aMinor 0.500000") << rest;
    }
}

TEST(ParseDetails, CannotReadAnObjectThatLacksAMemberOrHasItOfAnotherType)
{
    for (const char* text :
         {"{}", R"({"scale":"minor","keyConfidence":0.5})", R"({"key":"A","keyConfidence":0.5})",
          R"({"key":"A","scale":"minor"})", R"({"key":9,"scale":"minor","keyConfidence":0.5})",
          R"({"key":null,"scale":"minor","keyConfidence":0.5})",
          R"({"key":"A","scale":false,"keyConfidence":0.5})",
          R"({"key":"A","scale":["minor"],"keyConfidence":0.5})",
          R"({"key":"A","scale":"minor","keyConfidence":"0.82"})",
          R"({"key":"A","scale":"minor","keyConfidence":true})",
          R"({"key":"A","scale":"minor","keyConfidence":null})",
          R"({"Key":"A","scale":"minor","keyConfidence":0.5})", "[]",
          R"([{"key":"A","scale":"minor","keyConfidence":0.5}])"}) {
        EXPECT_EQ(parsedOrDescription(text), unreadable) << text;
    }
}

TEST(ParseDetails, CannotReadTextThatIsNotUtf8)
{
    EXPECT_EQ(parsedOrDescription("\xff"), unreadable);
}

TEST(ParseDetails, NamesTheWordsThatAreNoKeyOnlyWhenAllMembersAreThere)
{
    EXPECT_EQ(parsedOrDescription(R"({"key":"H","scale":"Minor ","keyConfidence":0.5})"),
              "Detected H Minor , but it could not be mapped to the app's key list.");
    EXPECT_EQ(parsedOrDescription(R"({"key":"a","scale":"minor","keyConfidence":0.5})"),
              "Detected a minor, but it could not be mapped to the app's key list.");
    EXPECT_EQ(parsedOrDescription(R"({"key":"H","scale":"minor"})"), unreadable);
    EXPECT_EQ(parsedOrDescription(R"({"key":"H","scale":"minor","keyConfidence":"x"})"),
              unreadable);
}

TEST(ParseDetails, FailsInTheParsersWordsWhereTheTextIsNoJson)
{
    EXPECT_EQ(parsedOrDescription(""), "illegal value");
    EXPECT_EQ(parsedOrDescription(" \n"), "illegal value");
    EXPECT_EQ(parsedOrDescription("loading {}"), "illegal value");
    EXPECT_EQ(parsedOrDescription(R"({"key":"A)"), "unterminated string");
    EXPECT_EQ(parsedOrDescription("{} done"), "garbage at the end of the document");
    EXPECT_EQ(parsedOrDescription("{}{}"), "garbage at the end of the document");
    EXPECT_EQ(parsedOrDescription("{"), "unterminated object");
    EXPECT_EQ(parsedOrDescription(R"({"keyConfidence":1e999})"), "illegal number");
    for (const char* scalar : {"3", "\"A\"", "true", "null"}) {
        EXPECT_EQ(parsedOrDescription(scalar), "illegal value") << scalar;
    }
}

}  // namespace
}  // namespace tonvale
