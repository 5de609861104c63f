// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Layouts

/// One of the keys, chosen in a pop-up list.
ColumnLayout {
    id: root

    required property string label
    /// Every key, each as { id, name }.
    required property var keys
    /// The id of the chosen key.
    required property string selection

    signal chosen(string id)

    spacing: 5

    PlainLabel {
        text: root.label
        font: Theme.callout
        color: Theme.secondary
    }

    PopUpButton {
        Layout.fillWidth: true
        model: root.keys
        textRole: "name"
        valueRole: "id"
        currentIndex: root.keys.findIndex(key => key.id === root.selection)
        onActivated: index => root.chosen(root.keys[index].id)

        Accessible.name: root.label
    }
}
