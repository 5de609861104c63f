// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Controls.Basic

// What the menus do. None is ever disabled; each shortcut is defined here only.
QtObject {
    id: root

    required property QtObject model

    readonly property Action about: Action {
        text: "About Tonvale"
        onTriggered: Qt.callLater(root.aboutRequested)
    }
    readonly property Action quit: Action {
        text: "Quit Tonvale"
        shortcut: "Ctrl+Q"
        onTriggered: Qt.quit()
    }
    // Later: whoever presses it from outside, a screen reader, must not wait for the panel to close.
    readonly property Action chooseFile: Action {
        text: "Choose Audio File..."
        shortcut: "Ctrl+O"
        onTriggered: Qt.callLater(root.model.chooseFile)
    }
    readonly property Action stopPreview: Action {
        text: "Stop Preview"
        shortcut: "Ctrl+."
        onTriggered: root.model.stopPreview()
    }

    signal aboutRequested()
}
