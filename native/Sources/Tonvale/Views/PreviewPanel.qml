// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Layouts

/// The remote control of the preview.
PanelCard {
    id: root

    required property QtObject model

    Connections {
        target: root.model

        // So that the space bar, or a pedal that sends it, plays the song just loaded.
        function onFileLoaded() {
            playButton.forceActiveFocus(Qt.ShortcutFocusReason);
            // A button that gets the focus back as it is enabled again would hide its ring.
            playButton.focusReason = Qt.ShortcutFocusReason;
        }
    }

    PanelHeading {
        Layout.fillWidth: true
        title: "Preview"
        status: root.model.previewStatus
        isReady: root.model.isPreviewing
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: 12

        PushButton {
            id: playButton
            isProminent: true
            symbol: root.model.isPreviewing ? "stop.fill" : "play.fill"
            text: root.model.isPreviewing ? "Stop" : "Play preview"
            longestText: "Play preview"
            enabled: root.model.hasAudio
            onClicked: {
                if (root.model.isPreviewing)
                    root.model.stopPreview();
                else
                    root.model.playPreview();
            }
        }

        PlainLabel {
            Layout.fillWidth: true
            text: root.model.previewHint
            color: Theme.secondary
            wrapMode: Text.Wrap
            maximumLineCount: 2
            elide: Text.ElideRight
        }
    }

    InsetBox {
        Layout.fillWidth: true
        padding: 12
        color: Theme.controlBackground

        TimelineSlider {
            Layout.fillWidth: true
            model: root.model
        }

        RowLayout {
            spacing: 10

            Item {
                implicitWidth: 54
                implicitHeight: elapsed.implicitHeight

                TabularLabel {
                    id: elapsed
                    text: root.model.formatTime(root.model.currentTime)
                    color: Theme.secondary
                }
            }

            Item {
                Layout.fillWidth: true
            }

            SymbolButton {
                symbol: "gobackward.15"
                text: "Back 15 seconds"
                enabled: root.model.hasAudio
                onClicked: root.model.skipPreview(-15)
            }

            SymbolButton {
                symbol: "goforward.15"
                text: "Forward 15 seconds"
                enabled: root.model.hasAudio
                onClicked: root.model.skipPreview(15)
            }

            Item {
                Layout.fillWidth: true
            }

            Item {
                implicitWidth: 54
                implicitHeight: total.implicitHeight

                TabularLabel {
                    id: total
                    anchors.right: parent.right
                    text: root.model.formatTime(root.model.duration)
                    color: Theme.secondary
                }
            }
        }
    }
}
