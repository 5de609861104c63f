// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Tonvale.Views

/// The window: its menus on top, the views below.
ApplicationWindow {
    id: root

    required property QtObject model
    required property QtObject scene

    function presentAbout(icon: var, name: string, version: string, credits: string): void {
        aboutWindow.icon = icon;
        aboutWindow.name = name;
        aboutWindow.version = version;
        aboutWindow.credits = credits;
        aboutWindow.orderFront();
    }

    title: "Tonvale"
    color: Theme.windowBackground
    // The content, below the menus, is never smaller than 840 x 680.
    minimumWidth: 840
    minimumHeight: 680 + menus.height
    width: 900
    height: 740 + menus.height
    visible: true

    menuBar: AppMenuBar {
        id: menus
        commands: appCommands
    }

    AppCommands {
        id: appCommands
        model: root.model
        onAboutRequested: root.scene.showAboutPanel()
    }

    Binding {
        target: Theme
        property: "isDark"
        value: root.scene.isDark
    }

    ContentView {
        anchors.fill: parent
        model: root.model
    }

    // The press that closes a menu does nothing else.
    MouseArea {
        anchors.fill: parent
        visible: menus.isOpen || closing.running

        Timer {
            id: closing
            interval: 0
        }

        Connections {
            target: menus

            function onIsOpenChanged() {
                closing.restart();
            }
        }
    }

    AboutWindow {
        id: aboutWindow
        transientParent: root
        commands: appCommands
    }
}
