// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/KeyParser.h"

#include "TonvaleRender/UsageError.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tonvale {
namespace {

TEST(KeyParser, ReadsWhatMusiciansType)
{
    const std::vector<std::pair<std::string_view, MusicKey>> spellings{
        {"C", MusicKey::cMajor},
        {"c", MusicKey::cMajor},
        {"Bb", MusicKey::bFlatMajor},
        {"bb", MusicKey::bFlatMajor},
        {"BB", MusicKey::bFlatMajor},
        {"b", MusicKey::bMajor},
        {"B", MusicKey::bMajor},
        {"Bb minor", MusicKey::bFlatMinor},
        {"Bbm", MusicKey::bFlatMinor},
        {"bbm", MusicKey::bFlatMinor},
        {"BbM", MusicKey::bFlatMajor},
        {"bM", MusicKey::bMajor},
        {"bm", MusicKey::bMinor},
        {"A# / Bb major", MusicKey::bFlatMajor},
        {"A# / Bb minor", MusicKey::bFlatMinor},
        {"A#/Bb", MusicKey::bFlatMajor},
        {"A#m/Bbm", MusicKey::bFlatMinor},
        {"c# minor", MusicKey::cSharpMinor},
        {"C#MIN", MusicKey::cSharpMinor},
        {"C# Maj", MusicKey::cSharpMajor},
        {"E♭", MusicKey::eFlatMajor},
        {"e♭ m", MusicKey::eFlatMinor},
        {"F♯m", MusicKey::fSharpMinor},
        {"bFlatMajor", MusicKey::bFlatMajor},
        {"fSharpMinor", MusicKey::fSharpMinor},
        {"B flat", MusicKey::bFlatMajor},
        {"b-flat minor", MusicKey::bFlatMinor},
        {"C sharp minor", MusicKey::cSharpMinor},
        {"c_sharp_major", MusicKey::cSharpMajor},
        {"  G minor  ", MusicKey::gMinor},
        {"Gminor", MusicKey::gMinor},
        {"Ab", MusicKey::aFlatMajor},
        {"abm", MusicKey::aFlatMinor},
        {"Cb", MusicKey::bMajor},
        {"B#", MusicKey::cMajor},
        {"E#m", MusicKey::fMinor},
        {"Fb", MusicKey::eMajor},
        {"Bbb", MusicKey::aMajor},
        {"F##", MusicKey::gMajor},
    };
    for (const auto& [text, key] : spellings) {
        EXPECT_EQ(parseKey(text), key) << text;
    }
}

TEST(KeyParser, ReadsEveryKeysOwnTexts)
{
    for (const MusicKey key : MusicKey::allCases()) {
        EXPECT_EQ(parseKey(key.rawValue()), key);
        EXPECT_EQ(parseKey(key.name()), key);
        EXPECT_EQ(parseKey(key.fileNameComponent()).pitchClass(), key.pitchClass());
    }
}

std::string refusalOf(std::string_view text)
{
    try {
        (void)parseKey(text);
    } catch (const UsageError& error) {
        return error.errorDescription();
    }
    return "(accepted)";
}

TEST(KeyParser, RefusesWhatIsNoKeyAndQuotesIt)
{
    for (const std::string_view text :
         {"",      " ",        "X",    "J minor", "C minro", "Cmm", "C#b#",  "Am7", "C major major",
          "C / D", "A#m / Bb", "Bb /", "/",       "mC",      "C-",  "hello", "Hx",  "Ces",
          "3",     "C\xff",    "♭",    "C♮♮"}) {
        const std::string refusal = refusalOf(text);
        EXPECT_NE(refusal.find("\"" + std::string(text) + "\" is not a key"), std::string::npos)
            << text << ": " << refusal;
    }
}

TEST(KeyParser, RefusesHWithAHint)
{
    for (const std::string_view text : {"H", "h", "Hm", "h minor", " H"}) {
        const std::string refusal = refusalOf(text);
        EXPECT_NE(refusal.find("write B for H, and Bb for the German B"), std::string::npos)
            << refusal;
    }
}

}  // namespace
}  // namespace tonvale
