// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Controls.Basic

/// What the menus do. None is ever disabled; each shortcut is defined here only.
QtObject {
    id: root

    required property QtObject model

    readonly property Action about: Action {
        text: "About Tonvale"
        onTriggered: root.aboutRequested()
    }
    readonly property Action quit: Action {
        text: "Quit Tonvale"
        shortcut: "Ctrl+Q"
        onTriggered: Qt.quit()
    }
    readonly property Action chooseFile: Action {
        text: "Choose Audio File..."
        shortcut: "Ctrl+O"
        // The panel must not open inside the press: a screen reader would wait for it.
        onTriggered: Qt.callLater(root.model.chooseFile)
    }
    readonly property Action stopPreview: Action {
        text: "Stop Preview"
        shortcut: "Ctrl+."
        onTriggered: root.model.stopPreview()
    }

    signal aboutRequested
}
