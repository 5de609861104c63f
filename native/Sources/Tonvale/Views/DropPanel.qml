// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Layouts
import Tonvale.Views

/// Where a song comes in: dropped, or chosen in a panel.
Item {
    id: root

    required property QtObject model

    /// A drag that carries a file hovers over the panel.
    readonly property bool isTargeted: dropArea.containsDrag

    implicitWidth: column.implicitWidth + 40
    implicitHeight: 340

    function hasFile(urls: list<url>): bool {
        return urls.some(url => url.toString().startsWith("file:"));
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.radius
        color: Theme.material
    }

    ColumnLayout {
        id: column
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        anchors.margins: 20
        spacing: 14

        Rectangle {
            Layout.alignment: Qt.AlignHCenter
            implicitWidth: 78
            implicitHeight: 78
            radius: 39
            color: Theme.faded(Theme.green, 0.14)

            SymbolImage {
                anchors.centerIn: parent
                name: "square.and.arrow.down"
                fontSize: 38
                color: Theme.green
            }
        }

        PlainLabel {
            Layout.alignment: Qt.AlignHCenter
            text: "Drop an audio file"
            font: Theme.title2
        }

        PlainLabel {
            Layout.fillWidth: true
            text: "Choose a recording, then set the original key and destination key."
            color: Theme.secondary
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            maximumLineCount: 3
            elide: Text.ElideRight
        }

        PushButton {
            Layout.alignment: Qt.AlignHCenter
            text: "Browse files"
            isProminent: true
            isLarge: true
            // The panel must not open inside the press: a screen reader would wait for it.
            onClicked: Qt.callLater(root.model.chooseFile)
        }
    }

    DashedOutline {
        anchors.fill: parent
        anchors.margins: -1
        radius: Theme.radius
        color: root.isTargeted ? Theme.green : Theme.faded(Theme.secondary, 0.42)
    }

    DropArea {
        id: dropArea
        anchors.fill: parent

        // Never more than a copy: after a move the sender would delete the song.
        onEntered: drag => {
            if (drag.hasUrls && root.hasFile(drag.urls))
                drag.accept(Qt.CopyAction);
            else
                drag.accepted = false;
        }
        onPositionChanged: drag => drag.accept(Qt.CopyAction)
        onDropped: drop => {
            if (root.model.handleDroppedURLs(drop.urls))
                drop.accept(Qt.CopyAction);
            else
                drop.accepted = false;
        }
    }
}
