// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Keys/TranspositionInterval.h"

#include <cstdlib>

namespace tonvale {

int semitonesBetween(MusicKey source, MusicKey target) noexcept
{
    int difference = target.pitchClass() - source.pitchClass();
    if (difference > 6) {
        difference -= 12;
    }
    if (difference < -6) {
        difference += 12;
    }
    return difference;
}

std::string intervalDescription(int semitones)
{
    if (semitones == 0) {
        return "The selected keys are the same.";
    }
    const int magnitude = std::abs(semitones);
    const std::string direction = semitones > 0 ? "Up " : "Down ";
    return direction + std::to_string(magnitude) + (magnitude == 1 ? " semitone." : " semitones.");
}

std::string formatSigned(int number)
{
    return (number > 0 ? "+" : "") + std::to_string(number);
}

}  // namespace tonvale
