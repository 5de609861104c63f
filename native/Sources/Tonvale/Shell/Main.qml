// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Tonvale.Views

// The window: its menus on top, the views below.
ApplicationWindow {
    id: root

    required property QtObject model
    required property QtObject scene

    // The content, below the menu bar, is never smaller than 840 x 680.
    readonly property size firstContentSize: Qt.size(900, 740)

    function presentAbout(icon, name, version, credits) {
        about.active = true;
        about.item.icon = icon;
        about.item.name = name;
        about.item.version = version;
        about.item.credits = credits;
        about.item.orderFront();
    }

    title: "Tonvale"
    color: Theme.window
    minimumWidth: 840
    minimumHeight: 680 + menus.height
    width: firstContentSize.width
    height: firstContentSize.height + menus.height
    visible: true

    menuBar: AppMenuBar {
        id: menus

        commands: commands
    }

    AppCommands {
        id: commands

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

    Loader {
        id: about

        active: false
        sourceComponent: AboutWindow {
            transientParent: root
            commands: commands
        }
    }
}
