// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick

/// A word or two in a capsule, green when all is ready and grey when not.
Item {
    id: root

    required property string text
    required property bool isReady

    readonly property color color: isReady ? Theme.green : Theme.secondary

    // An empty label would still be a line high.
    implicitWidth: (text === "" ? 0 : Math.ceil(label.implicitWidth)) + 20
    implicitHeight: (text === "" ? 0 : Theme.captionHeight) + 12

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: Theme.faded(root.color, root.isReady ? 0.13 : 0.1)
    }

    PlainLabel {
        id: label
        x: 10
        y: 6
        width: Math.max(0, parent.width - 20)
        height: Theme.captionHeight
        verticalAlignment: Text.AlignVCenter
        visible: root.text !== ""
        text: root.text
        font: Theme.pill
        color: root.color
        elide: Text.ElideRight
    }
}
