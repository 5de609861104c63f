// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Tonvale.Views

/// The two menus, on top of the window.
MenuBar {
    id: root

    required property AppCommands commands
    readonly property bool isOpen: tonvaleMenu.visible || fileMenu.visible

    implicitHeight: 26
    leftPadding: 15
    rightPadding: 15

    delegate: AppMenuBarItem {}

    background: Rectangle {
        color: Theme.windowBackground
    }

    Shortcut {
        sequence: "F10"
        onActivated: root.itemAt(0).triggered()
    }

    AppMenu {
        id: tonvaleMenu
        title: "&Tonvale"

        AppMenuItem {
            action: root.commands.about
        }

        AppMenuSeparator {}

        AppMenuItem {
            action: root.commands.quit
        }
    }

    AppMenu {
        id: fileMenu
        title: "&File"

        AppMenuItem {
            action: root.commands.chooseFile
        }

        AppMenuItem {
            action: root.commands.stopPreview
        }
    }
}
