// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Views

/// A button with a text and, if it has one, a symbol before it.
AppButton {
    id: root

    property bool isProminent: false
    property bool isLarge: false
    property string symbol
    /// The longest text that the button will show: it keeps that width.
    property string longestText: text

    readonly property color labelColor: !enabled ? Theme.disabledText : isProminent ? Theme.accentText : Theme.text

    implicitWidth: Math.ceil(implicitContentWidth) + leftPadding + rightPadding
    implicitHeight: isLarge ? 32 : 24
    horizontalPadding: isLarge ? 18 : 12
    spacing: 6
    font: Theme.control

    TextMetrics {
        id: longest
        font: root.font
        text: root.longestText
    }

    contentItem: Item {
        implicitWidth: (picture.visible ? picture.width + row.spacing : 0) + Math.max(longest.advanceWidth, label.implicitWidth)
        implicitHeight: row.implicitHeight

        Row {
            id: row
            x: Math.round((parent.width - width) / 2)
            y: Math.round((parent.height - height) / 2)
            spacing: root.spacing

            SymbolImage {
                id: picture
                anchors.verticalCenter: parent.verticalCenter
                visible: root.symbol !== ""
                name: root.symbol
                fontSize: root.font.pixelSize
                color: root.labelColor
            }

            PlainLabel {
                id: label
                text: root.text
                font: root.font
                color: root.labelColor
                Accessible.ignored: true
            }
        }
    }

    background: PushButtonGround {
        control: root
        isDown: root.down
        isProminent: root.isProminent
    }
}
