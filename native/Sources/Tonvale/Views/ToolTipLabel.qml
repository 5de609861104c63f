// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Templates as T

/// A short explanation beside the mouse.
T.ToolTip {
    id: root

    x: parent ? Math.round((parent.width - implicitWidth) / 2) : 0
    y: -implicitHeight - 6
    implicitWidth: Math.ceil(implicitContentWidth) + leftPadding + rightPadding
    implicitHeight: Math.ceil(implicitContentHeight) + topPadding + bottomPadding
    margins: 6
    horizontalPadding: 8
    verticalPadding: 4
    delay: 600
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent | T.Popup.CloseOnReleaseOutsideParent

    contentItem: PlainLabel {
        text: root.text
        font: Theme.callout
        Accessible.ignored: true
    }

    background: Rectangle {
        radius: 5
        color: Theme.popUpBackground
        border.color: Theme.separator
    }
}
