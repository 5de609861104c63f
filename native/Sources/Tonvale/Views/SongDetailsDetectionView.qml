// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Layouts

/// Starts the detection of key and tempo, and tells what came of it.
ColumnLayout {
    id: root

    required property QtObject model

    spacing: 6

    PushButton {
        Layout.fillWidth: true
        symbol: "waveform"
        text: root.model.isDetectingSongDetails ? "Detecting..." : "Auto Detect Song Details"
        enabled: root.model.canAutoDetectSongDetails
        onClicked: root.model.autoDetectSongDetails()
    }

    PlainLabel {
        Layout.fillWidth: true
        visible: root.model.songDetailsMessage !== ""
        // The end of its last line would count as a line more, and be told by an ellipsis.
        text: root.model.songDetailsMessage.replace(/\s+$/, "")
        Accessible.name: root.model.songDetailsMessage
        font: Theme.caption
        color: Theme.secondary
        wrapMode: Text.Wrap
        maximumLineCount: 2
        elide: Text.ElideRight
    }

    ColumnLayout {
        Layout.fillWidth: true
        visible: root.model.songDetailLines.length > 0
        spacing: 2

        Repeater {
            model: root.model.songDetailLines

            PlainLabel {
                required property string modelData

                Layout.fillWidth: true
                text: modelData
                font: Theme.callout
                color: Theme.secondary
                maximumLineCount: 1
                elide: Text.ElideRight
            }
        }
    }
}
