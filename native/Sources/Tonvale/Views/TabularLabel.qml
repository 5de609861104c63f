// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

pragma ComponentBehavior: Bound

import QtQuick

/// A text whose digits are all equally wide, so that it stands still while they change.
Item {
    id: root

    required property string text
    property font font: Theme.caption
    property color color: Theme.text

    readonly property real digitWidth: Math.round(digits.implicitWidth)

    implicitWidth: characters.implicitWidth
    implicitHeight: Math.ceil(characters.implicitHeight)

    Accessible.role: Accessible.StaticText
    Accessible.name: text

    // As wide as the widest digit.
    PlainLabel {
        id: digits
        visible: false
        text: Array.from("0123456789").join("\n")
        font: root.font
        Accessible.ignored: true
    }

    Row {
        id: characters

        Repeater {
            model: root.text.length

            PlainLabel {
                required property int index
                readonly property bool isDigit: text >= "0" && text <= "9"

                width: isDigit ? root.digitWidth : implicitWidth
                horizontalAlignment: Text.AlignHCenter
                text: root.text.charAt(index)
                font: root.font
                color: root.color
                Accessible.ignored: true
            }
        }
    }
}
