// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Tonvale.Views

/// A command in a menu, with its shortcut.
MenuItem {
    id: root

    readonly property color ink: highlighted ? Theme.accentText : Theme.text

    Accessible.onPressAction: {
        menu.dismiss();
        action.trigger();
    }

    implicitHeight: 26
    padding: 0
    leftPadding: 10
    rightPadding: 10
    font: Theme.body

    contentItem: RowLayout {
        spacing: 24

        PlainLabel {
            text: root.text
            font: root.font
            color: root.ink
            Layout.fillWidth: true
            Accessible.ignored: true
        }

        PlainLabel {
            text: root.action?.shortcut ?? ""
            font: root.font
            color: root.highlighted ? Theme.accentText : Theme.secondary
            Accessible.ignored: true
        }
    }

    background: Rectangle {
        radius: 5
        color: root.highlighted ? Theme.accent : "transparent"
    }
}
