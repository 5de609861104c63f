// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Controls.Basic
import Tonvale.Views

/// The title of a menu in the menu bar.
MenuBarItem {
    id: root

    // The letter behind the "&" opens the menu together with Alt.
    readonly property string shownTitle: text.replace("&", "")

    // The menu and the arrows of the keyboard come to its first command at once.
    Connections {
        target: root.menu

        function onOpened() {
            if (!root.hovered)
                root.menu.currentIndex = 0;
        }
    }

    Accessible.name: shownTitle
    Accessible.onPressAction: triggered()

    implicitHeight: 26
    padding: 0
    leftPadding: 9
    rightPadding: 9
    font: Theme.body

    contentItem: PlainLabel {
        text: root.text.replace(/&(.)/, "<u>$1</u>")
        textFormat: Text.StyledText
        font: root.font
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }

    background: Item {
        Rectangle {
            anchors.fill: parent
            anchors.topMargin: 2
            anchors.bottomMargin: 2
            radius: 5
            color: root.down || root.highlighted ? Theme.pressed : root.hovered ? Theme.hovered : "transparent"
        }
    }
}
