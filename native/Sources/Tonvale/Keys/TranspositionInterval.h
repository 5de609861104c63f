// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Tonvale/Keys/MusicKey.h"

#include <string>

namespace tonvale {

/// The shortest way from one key to another, the modes ignored. A tritone keeps the sign of the
/// difference between the pitch classes: C to F# is +6, F# to C is -6.
/// @return semitones, -6 ... 6; positive is up
[[nodiscard]] int semitonesBetween(MusicKey source, MusicKey target) noexcept;

/// The pitch shift in cents, 100 for each semitone.
[[nodiscard]] constexpr int centsForSemitones(int semitones) noexcept
{
    return semitones * 100;
}

/// The interval as a sentence: "Up 1 semitone.", "Down 3 semitones."
[[nodiscard]] std::string intervalDescription(int semitones);

/// A number with its sign in ASCII: "+4", "0", "-3".
[[nodiscard]] std::string formatSigned(int number);

}  // namespace tonvale
