// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Controls.Basic
import Tonvale.Views

/// A menu as it hangs from the menu bar.
Menu {
    id: root

    padding: 5
    overlap: 0
    topMargin: 4
    implicitWidth: 250

    background: PopUpGround {}
}
