// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QPalette>

namespace tonvale {

/// The toolkit's palette where it is dark or light as wanted, else one of our own that is.
/// @thread CONTROL
[[nodiscard]] QPalette paletteFor(bool isDark);

/// Whether the palette writes in light on dark.
[[nodiscard]] bool isDark(const QPalette& palette);

}  // namespace tonvale
