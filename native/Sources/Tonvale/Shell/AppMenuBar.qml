// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Tonvale.Views

MenuBar {
    id: root

    required property AppCommands commands

    leftPadding: 8
    rightPadding: 8
    implicitHeight: 26

    delegate: AppMenuBarItem {}
    background: Rectangle {
        color: Theme.window
    }

    AppMenu {
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
        title: "&File"

        AppMenuItem {
            action: root.commands.chooseFile
        }
        AppMenuItem {
            action: root.commands.stopPreview
        }
    }
}
