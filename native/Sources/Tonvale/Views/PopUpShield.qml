// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick

/// Lies over an open list until the pointer moves: the entry that happens to lie under it as the list
/// opens, or as one goes on with the keyboard, is neither meant nor highlighted.
MouseArea {
    id: root

    required property PopUpPress button

    /// Where the pointer rested when it was first seen over the list.
    property point resting
    property bool isSeen: false
    property bool isUp: true

    function raise(): void {
        isSeen = false;
        isUp = true;
    }

    function look(): void {
        const far = 2;
        if (!isSeen)
            resting = Qt.point(mouseX, mouseY);
        isSeen = true;
        if (Math.abs(mouseX - resting.x) > far || Math.abs(mouseY - resting.y) > far)
            isUp = false;
    }

    hoverEnabled: isUp
    onEntered: look()
    onPositionChanged: look()
    onPressed: mouse => mouse.accepted = button.isDoubleClick(mapToItem(button, mouse.x, mouse.y))
}
