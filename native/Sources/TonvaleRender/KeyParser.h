// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Tonvale/Keys/MusicKey.h"

#include <string_view>

namespace tonvale {

/// Reads a key as musicians type it: "Bb", "Bb minor", "Bbm", "c# min", "E♭", "b-flat major",
/// "bFlatMajor", "A# / Bb major". No mode means major. Capitals do not matter, but for
/// "m" (minor) and "M" (major).
/// @param text  UTF-8
/// @error UsageError that quotes the text and says what would be understood
/// @thread ANY
[[nodiscard]] MusicKey parseKey(std::string_view text);

}  // namespace tonvale
