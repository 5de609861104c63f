// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Layouts

/// Everything in the window, a pure function of the one model.
Item {
    id: root

    required property QtObject model
    property url iconSource: "image://artwork/icon"

    implicitWidth: 840
    implicitHeight: 680

    HeaderView {
        id: header
        anchors.left: parent.left
        anchors.right: parent.right
        model: root.model
        iconSource: root.iconSource
    }

    Rectangle {
        id: divider
        anchors.top: header.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        implicitHeight: 1
        color: Theme.separator
    }

    Rectangle {
        anchors.top: divider.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        color: Theme.windowBackground

        RowLayout {
            anchors.top: parent.top
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.margins: 22
            spacing: 20

            ColumnLayout {
                Layout.alignment: Qt.AlignTop
                Layout.minimumWidth: 380
                Layout.maximumWidth: 380
                spacing: 16

                DropPanel {
                    Layout.fillWidth: true
                    model: root.model
                }

                TrackPanel {
                    Layout.fillWidth: true
                    model: root.model
                }
            }

            ColumnLayout {
                Layout.alignment: Qt.AlignTop
                Layout.fillWidth: true
                spacing: 16

                KeysPanel {
                    Layout.fillWidth: true
                    model: root.model
                }

                PreviewPanel {
                    Layout.fillWidth: true
                    model: root.model
                }
            }
        }
    }
}
