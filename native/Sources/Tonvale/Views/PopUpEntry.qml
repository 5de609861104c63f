// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Templates as T
import Tonvale.Views

/// One line of a pop-up list; the chosen one has a check mark.
T.ItemDelegate {
    id: root

    required property bool isChosen

    implicitHeight: 24
    leftPadding: 24
    rightPadding: 10
    font: Theme.body
    hoverEnabled: true

    Accessible.role: Accessible.ListItem
    Accessible.name: text
    Accessible.onPressAction: clicked()

    contentItem: PlainLabel {
        text: root.text
        font: root.font
        color: root.highlighted ? Theme.accentText : Theme.text
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
        Accessible.ignored: true
    }

    background: Rectangle {
        radius: 5
        color: root.highlighted ? Theme.accent : "transparent"

        SymbolImage {
            x: 7
            y: Math.round((parent.height - height) / 2)
            visible: root.isChosen
            name: "checkmark"
            fontSize: 10
            color: root.highlighted ? Theme.accentText : Theme.text
        }
    }
}
