// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Keys/TranspositionInterval.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace tonvale {
namespace {

struct Example {
    MusicKey source;
    MusicKey target;
    int semitones;
    std::string description;
    std::string text;
    int cents;
};

const std::vector<Example> examples{
    {MusicKey::cMajor, MusicKey::eMajor, 4, "Up 4 semitones.", "+4", 400},
    {MusicKey::cMajor, MusicKey::aMajor, -3, "Down 3 semitones.", "-3", -300},
    {MusicKey::aMinor, MusicKey::cMajor, 3, "Up 3 semitones.", "+3", 300},
    {MusicKey::bMajor, MusicKey::cMajor, 1, "Up 1 semitone.", "+1", 100},
    {MusicKey::cMajor, MusicKey::bMajor, -1, "Down 1 semitone.", "-1", -100},
    {MusicKey::cMajor, MusicKey::fSharpMajor, 6, "Up 6 semitones.", "+6", 600},
    {MusicKey::fSharpMajor, MusicKey::cMajor, -6, "Down 6 semitones.", "-6", -600},
    {MusicKey::eFlatMajor, MusicKey::aMajor, 6, "Up 6 semitones.", "+6", 600},
    {MusicKey::aMajor, MusicKey::eFlatMajor, -6, "Down 6 semitones.", "-6", -600},
    {MusicKey::cMajor, MusicKey::cMinor, 0, "The selected keys are the same.", "0", 0},
    {MusicKey::bFlatMajor, MusicKey::bFlatMajor, 0, "The selected keys are the same.", "0", 0},
};

TEST(TranspositionInterval, MatchesTheWorkedExamples)
{
    for (const Example& example : examples) {
        const int semitones = semitonesBetween(example.source, example.target);
        EXPECT_EQ(semitones, example.semitones);
        EXPECT_EQ(intervalDescription(semitones), example.description);
        EXPECT_EQ(formatSigned(semitones), example.text);
        EXPECT_EQ(centsForSemitones(semitones), example.cents);
    }
}

TEST(TranspositionInterval, SpreadsThe576PairsEvenlyWithTheTritoneHalvedBySign)
{
    std::map<int, int> pairs;
    for (const MusicKey source : MusicKey::allCases()) {
        for (const MusicKey target : MusicKey::allCases()) {
            ++pairs[semitonesBetween(source, target)];
        }
    }
    std::map<int, int> expected{{-6, 24}, {6, 24}};
    for (int semitones = -5; semitones <= 5; ++semitones) {
        expected[semitones] = 48;
    }
    EXPECT_EQ(pairs, expected);
}

TEST(TranspositionInterval, GoesUpATritoneOnlyFromTheLowerHalfOfTheOctave)
{
    for (const MusicKey source : MusicKey::allCases()) {
        for (const MusicKey target : MusicKey::allCases()) {
            if (semitonesBetween(source, target) == 6) {
                EXPECT_LE(source.pitchClass(), 5);
            }
        }
    }
}

TEST(TranspositionInterval, LeadsToTheTargetsPitchClassForEveryPair)
{
    for (const MusicKey source : MusicKey::allCases()) {
        for (const MusicKey target : MusicKey::allCases()) {
            const int reached = source.pitchClass() + semitonesBetween(source, target);
            EXPECT_EQ((reached + 12) % 12, target.pitchClass());
        }
    }
}

TEST(TranspositionInterval, IgnoresTheMode)
{
    const auto otherMode = [](MusicKey key) {
        const int position = key.pitchClass() + (key.isMinor() ? 0 : 12);
        return MusicKey::allCases()[static_cast<std::size_t>(position)];
    };
    for (const MusicKey source : MusicKey::allCases()) {
        for (const MusicKey target : MusicKey::allCases()) {
            const int semitones = semitonesBetween(source, target);
            EXPECT_EQ(semitonesBetween(otherMode(source), target), semitones);
            EXPECT_EQ(semitonesBetween(source, otherMode(target)), semitones);
        }
    }
}

TEST(TranspositionInterval, SaysSemitoneOnlyForOneInBothDirections)
{
    for (int semitones = -6; semitones <= 6; ++semitones) {
        const bool isSingular = intervalDescription(semitones).ends_with(" semitone.");
        EXPECT_EQ(isSingular, semitones == 1 || semitones == -1) << semitones;
    }
}

TEST(FormatSigned, SignsPositiveNumbersAndLeavesZeroBare)
{
    EXPECT_EQ(formatSigned(0), "0");
    EXPECT_EQ(formatSigned(12), "+12");
    EXPECT_EQ(formatSigned(-12), "-12");
    EXPECT_EQ(formatSigned(1234567), "+1234567");
}

}  // namespace
}  // namespace tonvale
