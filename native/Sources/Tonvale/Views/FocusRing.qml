// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Templates as T

/// Shows where the keyboard's focus stands: a ring around its parent, unless the focus came with the
/// mouse. It stays while a menu or another window has the keys for a while.
Rectangle {
    id: root

    required property T.Control control
    property real around: Theme.controlRadius
    property bool isMeant: false

    function look(): void {
        const reason = control.focusReason;
        if ([Qt.ActiveWindowFocusReason, Qt.PopupFocusReason, Qt.MenuBarFocusReason].includes(reason))
            return;
        // A screen reader that sets the focus gives no reason.
        isMeant = control.activeFocus && [Qt.TabFocusReason, Qt.BacktabFocusReason, Qt.ShortcutFocusReason, Qt.OtherFocusReason].includes(reason);
    }

    visible: control.activeFocus && isMeant
    anchors.fill: parent
    anchors.margins: -3
    radius: around + 3
    color: "transparent"
    border.width: 2
    border.color: Theme.focus

    Connections {
        target: root.control

        function onActiveFocusChanged() {
            root.look();
        }
        function onFocusReasonChanged() {
            root.look();
        }
    }
}
