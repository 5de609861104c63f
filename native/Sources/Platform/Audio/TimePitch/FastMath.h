// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cmath>

namespace tonvale::timepitch {

/// Angle of (x, y) in [-pi, pi], error below 1e-6 rad; any finite input, (0, 0) gives 0.
///
/// arctan(a) / a on [0, 1] as a polynomial in a^2, the least of the largest errors (Lawson fit);
/// written without branches so that loops over it use the vector units.
inline float fastAngle(float y, float x) noexcept
{
    constexpr float tiny = 1e-37F;
    const float ax = std::fabs(x);
    const float ay = std::fabs(y);
    const float larger = ax > ay ? ax : ay;
    const float smaller = ax > ay ? ay : ax;
    const float a = smaller / (larger + tiny);
    const float s = a * a;
    float p = 0.00681179F;
    p = p * s - 0.03360421F;
    p = p * s + 0.07962366F;
    p = p * s - 0.13233341F;
    p = p * s + 0.19807815F;
    p = p * s - 0.33317368F;
    p = p * s + 0.99999611F;
    p *= a;
    p = ay > ax ? 1.57079633F - p : p;
    p = x < 0 ? 3.14159265F - p : p;
    return y < 0 ? -p : p;
}

struct SineCosine {
    float sine;
    float cosine;
};

/// Sine and cosine of |radians| < 1000, error below 1e-6 (reduction to quarter turns, then
/// polynomials of least largest error on [-pi/4, pi/4]); branch-free like fastAngle().
inline SineCosine fastSineCosine(float radians) noexcept
{
    constexpr float quartersPerRadian = 0.636619772F;
    constexpr float quarterHigh = 1.5703125F;  // pi/2 in two parts: the first has few bits, so
    constexpr float quarterLow = 4.83826794897e-4F;  // that quarters * quarterHigh is exact
    const float quarters = std::floor(radians * quartersPerRadian + 0.5F);
    const int quadrant = static_cast<int>(quarters) & 3;
    const float x = (radians - quarters * quarterHigh) - quarters * quarterLow;
    const float z = x * x;
    const float sine = x + x * z * (-0.16666651F + z * (0.00833198F - z * 0.00019496F));
    const float cosine =
        1 - 0.5F * z + z * z * (4.16666469e-2F + z * (-1.38873675e-3F + z * 2.44384515e-5F));
    const bool swapped = (quadrant & 1) != 0;
    const float u = swapped ? cosine : sine;
    const float v = swapped ? sine : cosine;
    const bool sineNegative = (quadrant & 2) != 0;
    const bool cosineNegative = ((quadrant + 1) & 2) != 0;
    return {sineNegative ? -u : u, cosineNegative ? -v : v};
}

}  // namespace tonvale::timepitch
