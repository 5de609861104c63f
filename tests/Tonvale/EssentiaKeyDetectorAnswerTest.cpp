// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/EssentiaKeyDetector.h"

#include "Platform/Foundation/PlatformError.h"
#include "Support/DetectionFailure.h"
#include "Support/FakeKeyDetection.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tonvale {
namespace {

using Error = EssentiaKeyDetectorError;
using EssentiaKeyDetector::detectSongDetails;
using test::detectionFailure;

constexpr const char* song = "/music/song.mp3";  // no helper of these tests opens it
constexpr const char* aMinor = R"({"key": "A", "scale": "minor", "keyConfidence": 0.82})";

/// What becomes of the answer of a helper that the real interpreter runs.
class EssentiaKeyDetectorAnswer : public ::testing::Test {
protected:
    test::FakeKeyDetection detection;
};

TEST_F(EssentiaKeyDetectorAnswer, IsKeyAndConfidence)
{
    detection.setAnswer(aMinor, "warnings do not matter");
    const DetectedSongDetails details = detectSongDetails(song);
    EXPECT_EQ(details.musicKey(), MusicKey::aMinor);
    EXPECT_EQ(details.keyConfidence(), 0.82);
    EXPECT_EQ(details.bpm(), std::nullopt);
}

TEST_F(EssentiaKeyDetectorAnswer, HasATempoWhereItIsANumber)
{
    const std::string start = R"({"key": "A", "scale": "minor", "keyConfidence": 0.82, "bpm": )";
    detection.setAnswer("\n" + start + "121.7}\n");
    EXPECT_EQ(detectSongDetails(song).bpm(), 121.7);
    for (const char* bpm : {"\"121\"", "null", "true"}) {
        detection.setAnswer(start + bpm + "}");
        EXPECT_EQ(detectSongDetails(song).bpm(), std::nullopt) << bpm;
    }
}

TEST_F(EssentiaKeyDetectorAnswer, IsTheMessageOfAFailedHelperRatherThanItsTraceback)
{
    detection.setAnswer(R"({"error": "The song is silent."})", "Traceback\n  line 1\n", 2);
    EXPECT_EQ(detectionFailure<Error>(song), Error::helperFailed("The song is silent."));
}

TEST_F(EssentiaKeyDetectorAnswer, IsTheWholeOfStandardErrorWhereAFailedHelperHasNoMessage)
{
    for (const char* output : {"", "progress\n", R"({"key": "A"})", R"(["error"])", "\xff",
                               R"({"error": 7})", R"(note {"error": "x"})"}) {
        detection.setAnswer(output, " Traceback\n  line 1\n", 2);
        EXPECT_EQ(detectionFailure<Error>(song), Error::helperFailed(" Traceback\n  line 1\n"))
            << output;
    }
}

TEST_F(EssentiaKeyDetectorAnswer, IsEvenAnEmptyMessageRatherThanStandardError)
{
    detection.setAnswer(R"({"error": ""})", "Traceback\n", 1);
    EXPECT_EQ(detectionFailure<Error>(song), Error::helperFailed(""));
    EXPECT_EQ(detectionFailure<Error>(song).errorDescription(), "Key detection failed.");
}

TEST_F(EssentiaKeyDetectorAnswer, IsAFixedSentenceWhereAFailedHelperSaysNothing)
{
    detection.setAnswer("", "", 1);
    EXPECT_EQ(detectionFailure<Error>(song).errorDescription(), "Key detection failed.");
    detection.setAnswer("", "caf\xe9\n", 1);  // not UTF-8, so it counts as empty
    EXPECT_EQ(detectionFailure<Error>(song).errorDescription(), "Key detection failed.");
}

TEST_F(EssentiaKeyDetectorAnswer, IsAFailureWhereTheStatusSaysSoWhateverWasPrinted)
{
    detection.setAnswer(aMinor, "late trouble", 3);
    EXPECT_EQ(detectionFailure<Error>(song), Error::helperFailed("late trouble"));
}

TEST_F(EssentiaKeyDetectorAnswer, IsAFailureWhereASignalKilledTheHelper)
{
    for (const char* signalName : {"SIGKILL", "SIGTERM"}) {
        const std::string end = "os.kill(os.getpid(), signal." + std::string(signalName) + ")\n";
        detection.setScript("import os, signal\n" + end);
        EXPECT_EQ(detectionFailure<Error>(song), Error::helperFailed(""));
        detection.setScript("import os, signal\nos.write(1, b'" + std::string(aMinor)
                            + "')\nos.write(2, b'too much memory')\n" + end);
        EXPECT_EQ(detectionFailure<Error>(song), Error::helperFailed("too much memory"));
    }
}

TEST_F(EssentiaKeyDetectorAnswer, IsTheParsersErrorWhereItIsNoJson)
{
    const std::string answer = aMinor;
    const std::vector<std::string> outputs{"", "\xff" + answer, "A minor", "3",
                                           "loading...\n" + answer};
    for (const std::string& output : outputs) {
        detection.setAnswer(output);
        EXPECT_EQ(detectionFailure<PlatformError>(song).errorDescription(), "illegal value")
            << output;
    }
    detection.setAnswer(answer + "\ndone\n");
    EXPECT_EQ(detectionFailure<PlatformError>(song).errorDescription(),
              "garbage at the end of the document");
}

TEST_F(EssentiaKeyDetectorAnswer, IsUnreadableWhereItIsOtherJson)
{
    for (const char* output : {"[]", "{}", R"([{"key": "A"}])", R"({"key": "A", "scale": "minor"})",
                               R"({"key": "H", "scale": "minor"})",
                               R"({"key": "A", "scale": "minor", "keyConfidence": "0.82"})"}) {
        detection.setAnswer(output);
        EXPECT_EQ(detectionFailure<Error>(song), Error::unreadableOutput()) << output;
    }
}

TEST_F(EssentiaKeyDetectorAnswer, IsQuotedWhereItsWordsAreNoKey)
{
    detection.setAnswer(R"({"key": "H", "scale": "minor", "keyConfidence": 0.5})");
    EXPECT_EQ(detectionFailure<Error>(song), Error::unsupportedKey("H", "minor"));
}

}  // namespace
}  // namespace tonvale
