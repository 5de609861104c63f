// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Layouts
import Tonvale.Views

/// The strip across the top: what this is, and the two things to do with the whole song.
Item {
    id: root

    required property QtObject model
    required property url iconSource

    implicitWidth: row.implicitWidth + 48
    implicitHeight: row.implicitHeight + 28

    RowLayout {
        id: row
        anchors.fill: parent
        anchors.leftMargin: 24
        anchors.rightMargin: 24
        anchors.topMargin: 14
        anchors.bottomMargin: 14
        spacing: 12

        RoundedImage {
            objectName: "icon"
            implicitWidth: 42
            implicitHeight: 42
            source: root.iconSource
            radius: 8
        }

        ColumnLayout {
            spacing: 2

            PlainLabel {
                text: "Tonvale"
                font: Theme.title3
            }

            PlainLabel {
                text: "Transpose a song from one key to another."
                color: Theme.secondary
            }
        }

        Item {
            Layout.fillWidth: true
        }

        PushButton {
            text: "Clear"
            onClicked: root.model.clear()
        }

        PushButton {
            text: root.model.convertButtonTitle
            isProminent: true
            longestText: "Convert to C#"
            enabled: root.model.hasAudio && !root.model.isExporting
            // The save panel must not open inside the press: a screen reader would wait for it.
            onClicked: Qt.callLater(root.model.chooseExportLocationAndRender)
        }
    }
}
