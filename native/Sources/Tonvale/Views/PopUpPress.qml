// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Templates as T

/// The mouse on a pop-up button. The press opens the list; one may hold, move to an entry and let go
/// there. Letting go where one pressed leaves the list open, whatever entry lies under the pointer.
MouseArea {
    id: root

    required property T.Popup popup
    required property ListView list

    /// Where the press was that opened the list.
    property point opening
    property bool hasMoved: false

    /// The held pointer is over this entry of the list; -1 beside the list.
    signal moved(index: int)
    /// It was let go there.
    signal letGo(index: int)

    preventStealing: true

    /// Whether a press at `place` is the second half of a double click on the button.
    function isDoubleClick(place: point): bool {
        return doubleClick.running && isAtOpening(place);
    }

    function isAtOpening(place: point): bool {
        const far = Qt.styleHints.startDragDistance;
        return Math.abs(place.x - opening.x) <= far && Math.abs(place.y - opening.y) <= far;
    }

    function entryAt(place: point): int {
        const inside = list.mapFromItem(root, place.x, place.y);
        return list.contains(inside) ? list.indexAt(list.contentX + inside.x, list.contentY + inside.y) : -1;
    }

    onPressed: mouse => {
        hasMoved = false;
        opening = Qt.point(mouse.x, mouse.y);
        doubleClick.restart();
        if (popup.visible)
            popup.close();
        else
            popup.open();
    }
    onPositionChanged: mouse => {
        const place = Qt.point(mouse.x, mouse.y);
        hasMoved = hasMoved || !isAtOpening(place);
        if (hasMoved && popup.visible)
            moved(entryAt(place));
    }
    onReleased: mouse => {
        if (hasMoved && popup.visible)
            letGo(entryAt(Qt.point(mouse.x, mouse.y)));
    }

    Timer {
        id: doubleClick
        interval: Qt.styleHints.mouseDoubleClickInterval
    }
}
