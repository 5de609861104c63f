// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Numbers.h"

#include <cmath>

namespace tonvale::timepitch {

/// Modified Bessel function of the first kind and order 0, by its power series.
inline double besselI0(double x) noexcept
{
    double term = 1;
    double sum = 1;
    for (int k = 1; k < 40; ++k) {
        term *= x * x / (4.0 * k * k);
        sum += term;
    }
    return sum;
}

/// Kaiser's window I0(beta sqrt(1 - x^2)) / I0(beta): 1 at 0, 0 from |x| = 1 on.
inline double kaiserWindow(double x, double beta) noexcept
{
    return std::abs(x) < 1 ? besselI0(beta * std::sqrt(1 - x * x)) / besselI0(beta) : 0;
}

/// sin(pi x) / (pi x)
inline double normalisedSinc(double x) noexcept
{
    return std::abs(x) < 1e-9 ? 1 : std::sin(pi * x) / (pi * x);
}

}  // namespace tonvale::timepitch
