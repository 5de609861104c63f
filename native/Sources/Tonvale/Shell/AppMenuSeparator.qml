// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Controls.Basic
import Tonvale.Views

/// A line between groups of commands.
MenuSeparator {
    padding: 10
    topPadding: 5
    bottomPadding: 5

    contentItem: Rectangle {
        implicitHeight: 1
        color: Theme.separator
    }
}
