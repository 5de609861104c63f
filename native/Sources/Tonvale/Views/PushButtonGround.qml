// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Templates as T

/// What a button's label stands on, in every state of the button.
Item {
    id: root

    required property T.Control control
    required property bool isDown
    property bool isProminent: false

    CastShadow {
        visible: root.control.enabled
        fall: 1
        radius: Theme.controlRadius
        blurRadius: 3
        color: Theme.shadow(0.1)
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.controlRadius
        visible: !root.isProminent
        opacity: root.control.enabled ? 1 : 0.5
        color: Theme.button
        border.width: 1
        border.color: Theme.buttonEdge
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.controlRadius
        visible: root.isProminent
        color: root.control.enabled ? Theme.accent : Theme.disabledAccent
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.controlRadius
        visible: root.control.enabled && (root.isDown || root.control.hovered)
        color: root.isProminent ? (root.isDown ? Theme.pressedAccent : Theme.hoveredAccent) : (root.isDown ? Theme.pressed : Theme.hovered)
    }

    FocusRing {
        control: root.control
    }
}
