// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tonvale.Views

MenuItem {
    id: root

    readonly property color ink: highlighted ? Theme.accentText : Theme.text

    implicitHeight: 26
    padding: 0
    leftPadding: 10
    rightPadding: 10
    font.family: Theme.fontFamily
    font.pixelSize: Theme.bodySize

    contentItem: RowLayout {
        spacing: 24

        Text {
            text: root.text
            textFormat: Text.PlainText
            font: root.font
            color: root.ink
            verticalAlignment: Text.AlignVCenter
            Layout.fillWidth: true
            Layout.fillHeight: true
        }
        Text {
            text: root.action && root.action.shortcut ? root.action.shortcut : ""
            textFormat: Text.PlainText
            font: root.font
            color: root.ink
            opacity: 0.7
            verticalAlignment: Text.AlignVCenter
            Layout.fillHeight: true
        }
    }
    background: Rectangle {
        radius: 5
        color: root.highlighted ? Theme.accent : "transparent"
    }
}
