// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Layouts

/// A box let into a panel, around one row or column.
Rectangle {
    id: root

    default property alias content: inside.data
    property int padding: 12

    implicitWidth: inside.implicitWidth + 2 * padding
    implicitHeight: inside.implicitHeight + 2 * padding
    radius: Theme.radius
    color: Theme.controlBackground
    border.width: 1
    border.color: Theme.faded(Theme.secondary, 0.18)

    ColumnLayout {
        id: inside
        anchors.fill: parent
        anchors.margins: root.padding
        spacing: Theme.defaultSpacing
    }
}
