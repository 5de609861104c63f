// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace tonvale {

/// Lets assistive technology see which controls of the window are disabled, and takes the titles of
/// a menu bar for items of it; Qt Quick 6.4 does neither. Call it once, with an application object
/// and before any QML is loaded.
/// @thread CONTROL
void installEnabledAwareAccessibility();

}  // namespace tonvale
