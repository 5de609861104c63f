// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Controls.Basic
import Tonvale.Shell
import Tonvale.Views

// The About panel: one small window that belongs to the main one.
Window {
    id: root

    required property AppCommands commands
    property alias icon: picture.icon
    property alias name: nameLabel.text
    property alias version: versionLabel.text
    property alias credits: creditsLabel.text

    function orderFront() {
        show();
        raise();
        requestActivate();
    }

    title: "About Tonvale"
    flags: Qt.Dialog
    color: Theme.window
    width: 300
    height: 260
    minimumWidth: width
    maximumWidth: width
    minimumHeight: height
    maximumHeight: height

    Shortcut {
        sequences: ["Escape", "Ctrl+W"]
        onActivated: root.close()
    }
    Shortcut {
        sequence: root.commands.quit.shortcut
        onActivated: root.commands.quit.trigger()
    }
    Shortcut {
        sequence: root.commands.chooseFile.shortcut
        onActivated: root.commands.chooseFile.trigger()
    }
    Shortcut {
        sequence: root.commands.stopPreview.shortcut
        onActivated: root.commands.stopPreview.trigger()
    }

    Column {
        anchors.centerIn: parent
        spacing: 6

        IconItem {
            id: picture

            width: 112
            height: 112
            anchors.horizontalCenter: parent.horizontalCenter
        }
        AboutLine {
            id: nameLabel

            font.pixelSize: Theme.title2Size
            font.bold: true
        }
        AboutLine {
            id: versionLabel

            font.pixelSize: Theme.bodySize
        }
        AboutLine {
            id: creditsLabel

            font.pixelSize: Theme.smallSystemSize
            color: Theme.secondary
        }
    }
}
