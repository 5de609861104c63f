// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Templates as T
import Tonvale.Views

/// A button that shows a symbol only; its text is for screen readers and the tool tip.
AppButton {
    id: root

    required property string symbol

    implicitWidth: 40
    implicitHeight: 24
    display: T.AbstractButton.IconOnly

    contentItem: Item {
        SymbolImage {
            x: Math.round((parent.width - width) / 2)
            y: Math.round((parent.height - height) / 2)
            name: root.symbol
            fontSize: 17
            color: root.enabled ? Theme.text : Theme.disabledText
        }
    }

    background: PushButtonGround {
        control: root
        isDown: root.down
    }

    ToolTipLabel {
        visible: root.hovered
        text: root.text
    }
}
