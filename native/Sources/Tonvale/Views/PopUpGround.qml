// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Views

/// What a menu or an open list stands on.
Item {
    CastShadow {
        fall: 4
        radius: Theme.radius
        blurRadius: 16
        color: Theme.shadow(0.25)
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.radius
        color: Theme.popUpBackground
        border.color: Theme.separator
    }
}
