// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Keys/MusicKey.h"

#include "Platform/Foundation/LowerCase.h"

#include <algorithm>
#include <cstddef>

namespace tonvale {

namespace {

struct KeyTexts {
    std::string_view rawValue;
    std::string_view name;
};

constexpr std::array<KeyTexts, MusicKey::count> keyTexts{{
    {"cMajor", "C major"},
    {"cSharpMajor", "C# / Db major"},
    {"dMajor", "D major"},
    {"eFlatMajor", "D# / Eb major"},
    {"eMajor", "E major"},
    {"fMajor", "F major"},
    {"fSharpMajor", "F# / Gb major"},
    {"gMajor", "G major"},
    {"aFlatMajor", "G# / Ab major"},
    {"aMajor", "A major"},
    {"bFlatMajor", "A# / Bb major"},
    {"bMajor", "B major"},
    {"cMinor", "C minor"},
    {"cSharpMinor", "C# / Db minor"},
    {"dMinor", "D minor"},
    {"eFlatMinor", "D# / Eb minor"},
    {"eMinor", "E minor"},
    {"fMinor", "F minor"},
    {"fSharpMinor", "F# / Gb minor"},
    {"gMinor", "G minor"},
    {"aFlatMinor", "G# / Ab minor"},
    {"aMinor", "A minor"},
    {"bFlatMinor", "A# / Bb minor"},
    {"bMinor", "B minor"},
}};

constexpr std::array<std::string_view, 12> fileNameComponents{"C",  "C#", "D",  "Eb", "E",  "F",
                                                              "F#", "G",  "Ab", "A",  "Bb", "B"};

struct NoteSpelling {
    std::string_view spelling;
    int pitchClass;
};

constexpr std::array<NoteSpelling, 17> noteSpellings{{
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

/// Whether full Unicode lower-casing of `text` gives the ASCII word `word`. Folding A to Z is
/// enough: no character outside ASCII lower-cases to one of the letters of "minor" alone.
bool lowerCasedEquals(std::string_view text, std::string_view word)
{
    return std::ranges::equal(text, word, {}, lowerCased);
}

}  // namespace

const std::array<MusicKey, MusicKey::count>& MusicKey::allCases() noexcept
{
    static constexpr std::array<MusicKey, count> keys{
        cMajor,      cSharpMajor, dMajor,     eFlatMajor, eMajor,     fMajor,
        fSharpMajor, gMajor,      aFlatMajor, aMajor,     bFlatMajor, bMajor,
        cMinor,      cSharpMinor, dMinor,     eFlatMinor, eMinor,     fMinor,
        fSharpMinor, gMinor,      aFlatMinor, aMinor,     bFlatMinor, bMinor};
    return keys;
}

std::optional<MusicKey> MusicKey::fromRawValue(std::string_view rawValue) noexcept
{
    const auto key = std::ranges::find(allCases(), rawValue, &MusicKey::rawValue);
    return key != allCases().end() ? std::optional(*key) : std::nullopt;
}

std::optional<MusicKey> MusicKey::fromEssentiaKey(std::string_view essentiaKey,
                                                  std::string_view scale) noexcept
{
    const auto note = std::ranges::find(noteSpellings, essentiaKey, &NoteSpelling::spelling);
    if (note == noteSpellings.end()) {
        return std::nullopt;
    }
    return fromPitchClass(note->pitchClass, lowerCasedEquals(scale, "minor"));
}

std::optional<MusicKey> MusicKey::fromPitchClass(int pitchClass, bool isMinor) noexcept
{
    // Compared as unsigned, so that a negative pitch class is out of range as well.
    if (static_cast<unsigned>(pitchClass) >= unsigned{pitchClasses}) {
        return std::nullopt;
    }
    return allCases()[static_cast<std::size_t>(isMinor ? pitchClass + pitchClasses : pitchClass)];
}

std::string_view MusicKey::rawValue() const noexcept
{
    return keyTexts[position_].rawValue;
}

std::string_view MusicKey::name() const noexcept
{
    return keyTexts[position_].name;
}

std::string_view MusicKey::fileNameComponent() const noexcept
{
    return fileNameComponents[static_cast<std::size_t>(pitchClass())];
}

}  // namespace tonvale
