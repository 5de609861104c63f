// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Layouts

/// The first row of a panel: its name, and how it is doing.
RowLayout {
    id: root

    required property string title
    required property string status
    required property bool isReady

    spacing: Theme.defaultSpacing

    PlainLabel {
        text: root.title
        font: Theme.headline
    }

    Item {
        Layout.fillWidth: true
    }

    StatusPill {
        text: root.status
        isReady: root.isReady
    }
}
