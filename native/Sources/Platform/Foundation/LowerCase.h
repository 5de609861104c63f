// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace tonvale {

/// a to z for A to Z, and every other byte as it is: unlike tolower, in any locale.
/// @thread ANY
[[nodiscard]] constexpr char lowerCased(char letter) noexcept
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

}  // namespace tonvale
