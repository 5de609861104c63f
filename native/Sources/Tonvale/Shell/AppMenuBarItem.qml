// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Controls.Basic
import Tonvale.Views

MenuBarItem {
    id: root

    implicitHeight: 26
    padding: 0
    leftPadding: 9
    rightPadding: 9
    font.family: Theme.fontFamily
    font.pixelSize: Theme.bodySize

    contentItem: Text {
        text: root.text.replace("&", "")
        textFormat: Text.PlainText
        font: root.font
        color: Theme.text
        verticalAlignment: Text.AlignVCenter
    }
    background: Item {
        Rectangle {
            anchors.fill: parent
            anchors.topMargin: 2
            anchors.bottomMargin: 2
            radius: 5
            color: root.down || root.highlighted || root.hovered ? Theme.hover : "transparent"
        }
    }
}
