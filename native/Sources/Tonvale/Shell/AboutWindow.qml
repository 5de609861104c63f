// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Shell
import Tonvale.Views

/// The About panel: one small window that belongs to the main one.
Window {
    id: root

    required property AppCommands commands
    property alias icon: picture.icon
    property alias name: nameLabel.text
    property alias version: versionLabel.text
    property alias credits: creditsLabel.text

    function orderFront(): void {
        if (!visible)
            centre();
        show();
        raise();
        requestActivate();
    }

    /// Over the main window: left alone, some window managers put it anywhere.
    function centre(): void {
        x = Math.round(transientParent.x + (transientParent.width - width) / 2);
        y = Math.round(transientParent.y + (transientParent.height - height) / 2);
    }

    title: "About Tonvale"
    // Of a size that cannot change, and with the main window wherever that goes.
    flags: Qt.Dialog | Qt.CustomizeWindowHint | Qt.WindowTitleHint | Qt.WindowSystemMenuHint | Qt.WindowCloseButtonHint
    color: Theme.windowBackground
    width: 300
    height: 264
    minimumWidth: width
    maximumWidth: width
    minimumHeight: height
    maximumHeight: height

    Shortcut {
        sequences: ["Escape", "Ctrl+W"]
        onActivated: root.close()
    }

    Instantiator {
        model: [root.commands.quit, root.commands.chooseFile, root.commands.stopPreview]

        // The menus' shortcuts work in their own window only.
        delegate: Shortcut {
            required property var modelData

            sequence: modelData.shortcut
            onActivated: modelData.trigger()
        }
    }

    Column {
        anchors.centerIn: parent
        spacing: 6

        IconItem {
            id: picture
            width: 120
            height: 120
            anchors.horizontalCenter: parent.horizontalCenter
        }

        PlainLabel {
            id: nameLabel
            font: Theme.title2
            anchors.horizontalCenter: parent.horizontalCenter
        }

        PlainLabel {
            id: versionLabel
            anchors.horizontalCenter: parent.horizontalCenter
        }

        PlainLabel {
            id: creditsLabel
            font: Theme.smallSystem
            color: Theme.secondary
            anchors.horizontalCenter: parent.horizontalCenter
        }
    }
}
