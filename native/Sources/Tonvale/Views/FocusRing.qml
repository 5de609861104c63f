// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick

/// Shows where the keyboard's focus stands: a ring around its parent.
Rectangle {
    property real around: Theme.controlRadius

    anchors.fill: parent
    anchors.margins: -3
    radius: around + 3
    color: "transparent"
    border.width: 2
    border.color: Theme.focus
}
