// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Views

/// The shadow that a parent casts on what lies behind it.
PanelShadow {
    /// How far it lies below the parent.
    property real fall: 0

    x: -reach
    y: fall - reach
    width: parent.width + 2 * reach
    height: parent.height + 2 * reach
}
