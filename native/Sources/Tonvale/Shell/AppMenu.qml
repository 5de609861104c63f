// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Controls.Basic
import Tonvale.Views

/// A menu as it hangs from the menu bar.
Menu {
    id: root

    padding: 5
    overlap: 0
    topMargin: 4
    implicitWidth: 250

    background: Item {
        PanelShadow {
            x: -reach
            y: 4 - reach
            width: parent.width + 2 * reach
            height: parent.height + 2 * reach
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
}
