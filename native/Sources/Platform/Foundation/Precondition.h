// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdlib>

namespace tonvale {

/// Ends the process when `condition` does not hold: for our own mistakes only, never for bad input.
/// Unlike assert it stays in every build.
/// @thread ANY
constexpr void precondition(bool condition) noexcept
{
    if (!condition) {
        std::abort();
    }
}

}  // namespace tonvale
