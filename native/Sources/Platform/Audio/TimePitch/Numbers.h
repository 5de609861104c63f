// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cmath>
#include <cstdint>

namespace tonvale::timepitch {

/// A position or a distance in frames (one sample per channel) at the song's rate.
using Frames = std::int64_t;

constexpr double pi = 3.14159265358979323846;
constexpr double twoPi = 2 * pi;

/// Division that rounds towards minus infinity; `divisor` > 0.
constexpr std::int64_t floorDivide(std::int64_t value, std::int64_t divisor) noexcept
{
    const std::int64_t quotient = value / divisor;
    return quotient * divisor > value ? quotient - 1 : quotient;
}

/// Division that rounds towards plus infinity; `divisor` > 0.
constexpr std::int64_t ceilDivide(std::int64_t value, std::int64_t divisor) noexcept
{
    return -floorDivide(-value, divisor);
}

/// The whole number nearest to `value`, |value| < 2^51, without a call or a branch: adding and
/// taking away 1.5 * 2^52 leaves no room for a fraction.
constexpr double nearestWhole(double value) noexcept
{
    constexpr double noFraction = 6755399441055744.0;
    return (value + noFraction) - noFraction;
}

/// `radians` brought into [-pi, pi] by whole turns.
constexpr double wrapPhase(double radians) noexcept
{
    return radians - twoPi * nearestWhole(radians / twoPi);
}

/// Half a period of a raised cosine: 0 at 0, 1 at 1, outside clamped.
inline double raisedCosine(double position) noexcept
{
    if (position <= 0) {
        return 0;
    }
    return position >= 1 ? 1 : 0.5 - 0.5 * std::cos(pi * position);
}

/// A rise whose slope is a Hann window: 0 at 0, 1 at 1, outside clamped. Steeper in the middle than
/// a raised cosine, and smoother at the ends: its spectrum falls with the third power of frequency.
inline double hannRise(double position) noexcept
{
    if (position <= 0) {
        return 0;
    }
    return position >= 1 ? 1 : position - std::sin(twoPi * position) / twoPi;
}

}  // namespace tonvale::timepitch
