// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Keys/MusicKey.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace tonvale {
namespace {

struct ExpectedKey {
    MusicKey key;
    std::string_view rawValue;
    std::string_view name;
    std::string_view fileNameComponent;
};

constexpr std::array<ExpectedKey, 24> expectedKeys{{
    {MusicKey::cMajor, "cMajor", "C major", "C"},
    {MusicKey::cSharpMajor, "cSharpMajor", "C# / Db major", "C#"},
    {MusicKey::dMajor, "dMajor", "D major", "D"},
    {MusicKey::eFlatMajor, "eFlatMajor", "D# / Eb major", "Eb"},
    {MusicKey::eMajor, "eMajor", "E major", "E"},
    {MusicKey::fMajor, "fMajor", "F major", "F"},
    {MusicKey::fSharpMajor, "fSharpMajor", "F# / Gb major", "F#"},
    {MusicKey::gMajor, "gMajor", "G major", "G"},
    {MusicKey::aFlatMajor, "aFlatMajor", "G# / Ab major", "Ab"},
    {MusicKey::aMajor, "aMajor", "A major", "A"},
    {MusicKey::bFlatMajor, "bFlatMajor", "A# / Bb major", "Bb"},
    {MusicKey::bMajor, "bMajor", "B major", "B"},
    {MusicKey::cMinor, "cMinor", "C minor", "C"},
    {MusicKey::cSharpMinor, "cSharpMinor", "C# / Db minor", "C#"},
    {MusicKey::dMinor, "dMinor", "D minor", "D"},
    {MusicKey::eFlatMinor, "eFlatMinor", "D# / Eb minor", "Eb"},
    {MusicKey::eMinor, "eMinor", "E minor", "E"},
    {MusicKey::fMinor, "fMinor", "F minor", "F"},
    {MusicKey::fSharpMinor, "fSharpMinor", "F# / Gb minor", "F#"},
    {MusicKey::gMinor, "gMinor", "G minor", "G"},
    {MusicKey::aFlatMinor, "aFlatMinor", "G# / Ab minor", "Ab"},
    {MusicKey::aMinor, "aMinor", "A minor", "A"},
    {MusicKey::bFlatMinor, "bFlatMinor", "A# / Bb minor", "Bb"},
    {MusicKey::bMinor, "bMinor", "B minor", "B"},
}};

TEST(MusicKey, ListsTheMajorsThenTheMinorsEachRisingFromC)
{
    ASSERT_EQ(MusicKey::allCases().size(), 24U);
    for (std::size_t position = 0; position < expectedKeys.size(); ++position) {
        EXPECT_EQ(MusicKey::allCases()[position], expectedKeys[position].key) << position;
    }
}

TEST(MusicKey, HasTheTextsOfItsTable)
{
    for (const ExpectedKey& expected : expectedKeys) {
        EXPECT_EQ(expected.key.rawValue(), expected.rawValue);
        EXPECT_EQ(expected.key.id(), expected.rawValue);
        EXPECT_EQ(expected.key.name(), expected.name);
        EXPECT_EQ(expected.key.fileNameComponent(), expected.fileNameComponent);
    }
}

TEST(MusicKey, TakesPitchClassAndModeFromItsPosition)
{
    for (int position = 0; position < MusicKey::count; ++position) {
        const MusicKey key = MusicKey::allCases()[static_cast<std::size_t>(position)];
        EXPECT_EQ(key.pitchClass(), position % 12);
        EXPECT_EQ(key.isMinor(), position >= 12);
    }
}

TEST(MusicKey, EqualsOnlyItself)
{
    for (const MusicKey left : MusicKey::allCases()) {
        const auto equals = [left](MusicKey right) { return left == right; };
        EXPECT_EQ(std::ranges::count_if(MusicKey::allCases(), equals), 1);
    }
}

TEST(MusicKey, HashesAsItsRawValueDoes)
{
    for (const MusicKey key : MusicKey::allCases()) {
        EXPECT_EQ(std::hash<MusicKey>{}(key), std::hash<std::string_view>{}(key.rawValue()));
    }
}

TEST(MusicKey, IsFoundByItsRawValue)
{
    for (const MusicKey key : MusicKey::allCases()) {
        EXPECT_EQ(MusicKey::fromRawValue(key.rawValue()), key);
    }
}

TEST(MusicKey, IsNotFoundByAnyOtherText)
{
    for (const std::string_view text :
         {"EFlatMinor", "eflatminor", "D# / Eb minor", "", " cMajor", "cMajor ", "cmajor", "C"}) {
        EXPECT_EQ(MusicKey::fromRawValue(text), std::nullopt) << text;
    }
}

struct DetectorSpelling {
    std::string_view note;
    int pitchClass;
};

constexpr std::array<DetectorSpelling, 17> detectorSpellings{{
    {"C", 0},
    {"C#", 1},
    {"Db", 1},
    {"D", 2},
    {"D#", 3},
    {"Eb", 3},
    {"E", 4},
    {"F", 5},
    {"F#", 6},
    {"Gb", 6},
    {"G", 7},
    {"G#", 8},
    {"Ab", 8},
    {"A", 9},
    {"A#", 10},
    {"Bb", 10},
    {"B", 11},
}};

TEST(MusicKeyFromDetector, KnowsSeventeenSpellingsInBothModes)
{
    for (const auto& [note, pitchClass] : detectorSpellings) {
        const auto major = MusicKey::fromEssentiaKey(note, "major");
        const auto minor = MusicKey::fromEssentiaKey(note, "minor");
        ASSERT_TRUE(major && minor) << note;
        EXPECT_EQ(*major, MusicKey::allCases()[static_cast<std::size_t>(pitchClass)]);
        EXPECT_EQ(*minor, MusicKey::allCases()[static_cast<std::size_t>(pitchClass + 12)]);
    }
}

TEST(MusicKeyFromDetector, TakesOnlyTheWordMinorForMinorInAnyCapitals)
{
    for (const std::string_view scale : {"minor", "MINOR", "Minor", "mInOr"}) {
        EXPECT_EQ(MusicKey::fromEssentiaKey("Bb", scale), MusicKey::bFlatMinor) << scale;
    }
    for (const std::string_view scale :
         {"major", "MAJOR", "", "dorian", "Minor ", " minor", "min", "minor\n", "mınor", "minör"}) {
        EXPECT_EQ(MusicKey::fromEssentiaKey("Bb", scale), MusicKey::bFlatMajor) << scale;
    }
}

TEST(MusicKeyFromDetector, RefusesEveryOtherNoteWhateverTheScale)
{
    for (const std::string_view note : {"c", "bb", "Cb", "E#", "Fb", "B#", " C", "C ", "", "H",
                                        "C♯", "C##", "A# / Bb", "CMajor"}) {
        for (const std::string_view scale : {"major", "minor", "", "unknown"}) {
            EXPECT_EQ(MusicKey::fromEssentiaKey(note, scale), std::nullopt) << note << scale;
        }
    }
}

}  // namespace
}  // namespace tonvale
