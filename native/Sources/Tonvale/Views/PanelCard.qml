// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Layouts

/// The look of the track, keys and preview panels: their parts below each other on a raised card.
Item {
    default property alias content: column.data

    implicitWidth: column.implicitWidth + 36
    implicitHeight: column.implicitHeight + 36

    CastShadow {
        fall: 12
        radius: Theme.radius
        blurRadius: 24
        color: Theme.shadow(0.08)
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.radius
        color: Theme.material
    }

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 18
        spacing: 14
    }
}
