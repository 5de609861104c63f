// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace tonvale {

/// One of the 24 keys: a pitch class (C = 0 ... B = 11) that is major or minor.
///
/// Black keys are spelled in three ways, each on purpose: rawValue() as the constants below are
/// named, name() with the sharp and the flat, fileNameComponent() short and without the mode.
/// @thread ANY; every operation is pure
class MusicKey {
public:
    static const MusicKey cMajor, cSharpMajor, dMajor, eFlatMajor, eMajor, fMajor;
    static const MusicKey fSharpMajor, gMajor, aFlatMajor, aMajor, bFlatMajor, bMajor;
    static const MusicKey cMinor, cSharpMinor, dMinor, eFlatMinor, eMinor, fMinor;
    static const MusicKey fSharpMinor, gMinor, aFlatMinor, aMinor, bFlatMinor, bMinor;

    static constexpr int count = 24;

    /// Every key: the majors from C upwards by semitone, then the minors in the same order.
    [[nodiscard]] static const std::array<MusicKey, count>& allCases() noexcept;

    /// The key whose rawValue() equals `rawValue` letter for letter.
    [[nodiscard]] static std::optional<MusicKey> fromRawValue(std::string_view rawValue) noexcept;

    /// The key that a detector names by note and scale.
    /// @param essentiaKey  one of the 17 usual spellings, as it stands: "C", "C#", "Db", ... "B"
    /// @param scale        minor when it is "minor" in any capitalisation; anything else is major
    [[nodiscard]] static std::optional<MusicKey> fromEssentiaKey(std::string_view essentiaKey,
                                                                 std::string_view scale) noexcept;

    /// The constant's name: "eFlatMajor".
    [[nodiscard]] std::string_view rawValue() const noexcept;
    /// Identity in lists and pickers: the raw value.
    [[nodiscard]] std::string_view id() const noexcept { return rawValue(); }
    /// What people read: "D# / Eb major".
    [[nodiscard]] std::string_view name() const noexcept;
    /// The note alone, for file names and buttons: "Eb" for the major and the minor key.
    [[nodiscard]] std::string_view fileNameComponent() const noexcept;
    /// Semitones above C, 0 ... 11.
    [[nodiscard]] constexpr int pitchClass() const noexcept { return position_ % pitchClasses; }
    [[nodiscard]] constexpr bool isMinor() const noexcept { return position_ >= pitchClasses; }

    friend constexpr bool operator==(MusicKey, MusicKey) noexcept = default;

private:
    static constexpr int pitchClasses = 12;

    constexpr explicit MusicKey(std::uint8_t position) noexcept : position_(position) {}
    [[nodiscard]] static std::optional<MusicKey> fromPitchClass(int pitchClass,
                                                                bool isMinor) noexcept;

    std::uint8_t position_;  // index into allCases()
};

inline constexpr MusicKey MusicKey::cMajor{0};
inline constexpr MusicKey MusicKey::cSharpMajor{1};
inline constexpr MusicKey MusicKey::dMajor{2};
inline constexpr MusicKey MusicKey::eFlatMajor{3};
inline constexpr MusicKey MusicKey::eMajor{4};
inline constexpr MusicKey MusicKey::fMajor{5};
inline constexpr MusicKey MusicKey::fSharpMajor{6};
inline constexpr MusicKey MusicKey::gMajor{7};
inline constexpr MusicKey MusicKey::aFlatMajor{8};
inline constexpr MusicKey MusicKey::aMajor{9};
inline constexpr MusicKey MusicKey::bFlatMajor{10};
inline constexpr MusicKey MusicKey::bMajor{11};
inline constexpr MusicKey MusicKey::cMinor{12};
inline constexpr MusicKey MusicKey::cSharpMinor{13};
inline constexpr MusicKey MusicKey::dMinor{14};
inline constexpr MusicKey MusicKey::eFlatMinor{15};
inline constexpr MusicKey MusicKey::eMinor{16};
inline constexpr MusicKey MusicKey::fMinor{17};
inline constexpr MusicKey MusicKey::fSharpMinor{18};
inline constexpr MusicKey MusicKey::gMinor{19};
inline constexpr MusicKey MusicKey::aFlatMinor{20};
inline constexpr MusicKey MusicKey::aMinor{21};
inline constexpr MusicKey MusicKey::bFlatMinor{22};
inline constexpr MusicKey MusicKey::bMinor{23};

}  // namespace tonvale

/// A key hashes as its raw value does.
template <>
struct std::hash<tonvale::MusicKey> {
    std::size_t operator()(tonvale::MusicKey key) const noexcept
    {
        return std::hash<std::string_view>{}(key.rawValue());
    }
};
