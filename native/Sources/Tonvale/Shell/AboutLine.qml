// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Views

// One line of the About panel.
Text {
    anchors.horizontalCenter: parent ? parent.horizontalCenter : undefined
    textFormat: Text.PlainText
    font.family: Theme.fontFamily
    color: Theme.text
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
