// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick

/// A text shown exactly as it is: no markup is looked for in it.
Text {
    textFormat: Text.PlainText
    renderType: Text.NativeRendering
    font: Theme.body
    color: Theme.text

    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
