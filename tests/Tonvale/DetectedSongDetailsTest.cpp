// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/DetectedSongDetails.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace tonvale {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

std::string keyLine(double keyConfidence)
{
    return DetectedSongDetails(MusicKey::eFlatMajor, keyConfidence, 120.0).displayLines()[0];
}

std::string tempoLine(std::optional<double> bpm)
{
    return DetectedSongDetails(MusicKey::cMajor, 1.0, bpm).displayLines()[1];
}

std::string percentOf(double keyConfidence)
{
    const std::string label = "Key  : D# / Eb major - Confidence ";
    const std::string line = keyLine(keyConfidence);
    EXPECT_TRUE(line.starts_with(label)) << line;
    return line.substr(label.size());
}

TEST(DetectedSongDetails, KeepTheirValuesAsTheyAre)
{
    const DetectedSongDetails details(MusicKey::aMinor, 1.75, 121.7);
    EXPECT_EQ(details.musicKey(), MusicKey::aMinor);
    EXPECT_EQ(details.keyConfidence(), 1.75);
    EXPECT_EQ(details.bpm(), 121.7);
    EXPECT_EQ(DetectedSongDetails(MusicKey::aMinor, -2, std::nullopt).keyConfidence(), -2);
    EXPECT_EQ(DetectedSongDetails(MusicKey::aMinor, 1, std::nullopt).bpm(), std::nullopt);
}

TEST(DetectedSongDetails, ShowTheKeyAndTheTempo)
{
    const auto lines = DetectedSongDetails(MusicKey::aMinor, 0.5, 128.0).displayLines();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], "Key  : A minor - Confidence 50%");
    EXPECT_EQ(lines[1], "Tempo  : 128 BPM - Unverified");
}

TEST(DetectedSongDetails, AreTwoLinesAlsoWithoutATempo)
{
    const auto lines =
        DetectedSongDetails(MusicKey::fSharpMajor, 0.82, std::nullopt).displayLines();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0], "Key  : F# / Gb major - Confidence 82%");
    EXPECT_EQ(lines[1], "Tempo  : Unavailable");
}

TEST(DetectedSongDetails, RoundTheConfidenceWithHalvesUp)
{
    EXPECT_EQ(percentOf(0.125), "13%");
    EXPECT_EQ(percentOf(0.625), "63%");
    EXPECT_EQ(percentOf(0.005), "1%");
    EXPECT_EQ(percentOf(0.004), "0%");
    EXPECT_EQ(percentOf(0.994), "99%");
    EXPECT_EQ(percentOf(0.995), "100%");
    EXPECT_EQ(percentOf(5e-324), "0%");
}

TEST(DetectedSongDetails, ClampTheConfidenceOnlyForShowing)
{
    EXPECT_EQ(percentOf(1.0), "100%");
    EXPECT_EQ(percentOf(1.7), "100%");
    EXPECT_EQ(percentOf(1e300), "100%");
    EXPECT_EQ(percentOf(0.0), "0%");
    EXPECT_EQ(percentOf(-0.0), "0%");
    EXPECT_EQ(percentOf(-0.2), "0%");
    EXPECT_EQ(percentOf(-1e300), "0%");
}

TEST(DetectedSongDetails, RoundTheTempoWithHalvesUp)
{
    EXPECT_EQ(tempoLine(127.5), "Tempo  : 128 BPM - Unverified");
    EXPECT_EQ(tempoLine(126.5), "Tempo  : 127 BPM - Unverified");
    EXPECT_EQ(tempoLine(127.49), "Tempo  : 127 BPM - Unverified");
    EXPECT_EQ(tempoLine(0.5), "Tempo  : 1 BPM - Unverified");
}

TEST(DetectedSongDetails, CallEveryTempoAboveZeroATempo)
{
    EXPECT_EQ(tempoLine(0.4), "Tempo  : 0 BPM - Unverified");
    EXPECT_EQ(tempoLine(5e-324), "Tempo  : 0 BPM - Unverified");
    for (const double bpm : {0.0, -0.0, -0.4, -90.0, infinity, -infinity, notANumber}) {
        EXPECT_EQ(tempoLine(bpm), "Tempo  : Unavailable") << bpm;
    }
}

TEST(DetectedSongDetails, ShowAnyTempoInPlainDigits)
{
    EXPECT_EQ(tempoLine(1234567), "Tempo  : 1234567 BPM - Unverified");
    // 2^64, beyond every integer type
    EXPECT_EQ(tempoLine(18446744073709551616.0), "Tempo  : 18446744073709551616 BPM - Unverified");
    const std::string most = tempoLine(std::numeric_limits<double>::max());
    EXPECT_EQ(most.size(), std::string("Tempo  :  BPM - Unverified").size() + 309);
}

}  // namespace
}  // namespace tonvale
