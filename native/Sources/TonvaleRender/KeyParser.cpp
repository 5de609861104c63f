// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/KeyParser.h"

#include "Platform/Foundation/LowerCase.h"
#include "TonvaleRender/TerminalText.h"
#include "TonvaleRender/UsageError.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>

namespace tonvale {

namespace {

/// A spelling like "Bb min", not yet a key: the mode may be left open.
struct Spelling {
    int pitchClass;
    std::optional<bool> isMinor;
};

bool startsWithWord(std::string_view text, std::string_view word)
{
    return text.size() >= word.size()
           && std::ranges::equal(text.substr(0, word.size()), word, {}, lowerCased);
}

/// Consumes `word` from the front of `text`, in any capitalisation.
bool accept(std::string_view& text, std::string_view word)
{
    if (!startsWithWord(text, word)) {
        return false;
    }
    text.remove_prefix(word.size());
    return true;
}

std::string_view withoutLeadingSeparators(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t-_");
    return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\n\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Consumes one accidental. @return semitones, 0 when there is none
int acceptAccidental(std::string_view& text)
{
    std::string_view rest = withoutLeadingSeparators(text);
    constexpr std::array<std::pair<std::string_view, int>, 6> accidentals{
        {{"sharp", 1}, {"#", 1}, {"♯", 1}, {"flat", -1}, {"b", -1}, {"♭", -1}}};
    for (const auto& [word, semitones] : accidentals) {
        if (accept(rest, word)) {
            text = rest;
            return semitones;
        }
    }
    return 0;
}

/// Consumes a note. @return its pitch class
std::optional<int> acceptNote(std::string_view& text)
{
    constexpr std::array<int, 7> naturals{9, 11, 0, 2, 4, 5, 7};  // a to g
    if (text.empty() || lowerCased(text.front()) < 'a' || lowerCased(text.front()) > 'g') {
        return std::nullopt;
    }
    int semitones = naturals[static_cast<std::size_t>(lowerCased(text.front()) - 'a')];
    text.remove_prefix(1);
    constexpr int mostAccidentals = 2;
    for (int count = 0; count < mostAccidentals; ++count) {
        semitones += acceptAccidental(text);
    }
    return (semitones + 12) % 12;
}

std::optional<Spelling> parseSpelling(std::string_view text)
{
    std::string_view rest = trimmed(text);
    const std::optional<int> pitchClass = acceptNote(rest);
    if (!pitchClass) {
        return std::nullopt;
    }
    if (rest.empty()) {
        return Spelling{*pitchClass, std::nullopt};
    }
    const std::string_view mode = withoutLeadingSeparators(rest);
    const auto is = [mode](std::string_view word) {
        return mode.size() == word.size() && startsWithWord(mode, word);
    };
    if (mode == "m" || is("min") || is("minor")) {
        return Spelling{*pitchClass, true};
    }
    if (mode == "M" || is("maj") || is("major")) {
        return Spelling{*pitchClass, false};
    }
    return std::nullopt;
}

/// "A# / Bb major": both names must mean the same key.
std::optional<Spelling> parseSpellings(std::string_view text)
{
    const std::size_t slash = text.find('/');
    if (slash == std::string_view::npos) {
        return parseSpelling(text);
    }
    const auto left = parseSpelling(text.substr(0, slash));
    const auto right = parseSpelling(text.substr(slash + 1));
    const bool agree = left && right && left->pitchClass == right->pitchClass
                       && (!left->isMinor || left->isMinor == right->isMinor);
    return agree ? right : std::nullopt;
}

/// "H minor": what would be a key if its H were a B.
bool isGermanH(std::string_view text)
{
    std::string asB(trimmed(text));
    if (asB.empty() || lowerCased(asB.front()) != 'h') {
        return false;
    }
    asB.front() = 'B';
    return parseSpellings(asB).has_value();
}

[[noreturn]] void refuse(std::string_view text)
{
    if (isGermanH(text)) {
        throw UsageError(quotedText(text)
                         + " is a German name: write B for H, and Bb for the German B.");
    }
    throw UsageError(quotedText(text)
                     + " is not a key; keys look like C, F#, Bb, \"Eb minor\" or C#m.");
}

}  // namespace

MusicKey parseKey(std::string_view text)
{
    const std::optional<Spelling> spelling = parseSpellings(text);
    if (!spelling) {
        refuse(text);
    }
    const int position = spelling->pitchClass + (spelling->isMinor.value_or(false) ? 12 : 0);
    return MusicKey::allCases()[static_cast<std::size_t>(position)];
}

}  // namespace tonvale
