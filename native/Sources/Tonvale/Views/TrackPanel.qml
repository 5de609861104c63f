// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Layouts
import Tonvale.Views

/// The loaded song, and what could be found out about it.
PanelCard {
    id: root

    required property QtObject model

    PanelHeading {
        Layout.fillWidth: true
        title: "Track"
        status: root.model.fileStatus
        isReady: root.model.hasAudio
    }

    InsetBox {
        Layout.fillWidth: true
        padding: 12
        color: Theme.controlBackground

        RowLayout {
            spacing: 12

            Rectangle {
                implicitWidth: 50
                implicitHeight: 50
                radius: Theme.radius
                color: Theme.faded(Theme.blue, 0.12)

                SymbolImage {
                    anchors.centerIn: parent
                    name: "music.note"
                    fontSize: 30
                    color: Theme.blue
                }
            }

            ColumnLayout {
                Layout.fillWidth: true
                spacing: 3

                PlainLabel {
                    Layout.fillWidth: true
                    text: root.model.fileName
                    font: Theme.headline
                    maximumLineCount: 1
                    elide: Text.ElideMiddle
                }

                PlainLabel {
                    Layout.fillWidth: true
                    text: root.model.fileDetail
                    color: Theme.secondary
                    wrapMode: Text.Wrap
                    maximumLineCount: 2
                    elide: Text.ElideRight
                }
            }
        }
    }

    SongDetailsDetectionView {
        Layout.fillWidth: true
        model: root.model
    }
}
