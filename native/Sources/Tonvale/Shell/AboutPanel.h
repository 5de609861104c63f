// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace tonvale::AboutPanel {

/// Brings the About panel to the front: icon, name, version, and one line of credits.
/// @thread CONTROL
void show();

}  // namespace tonvale::AboutPanel
