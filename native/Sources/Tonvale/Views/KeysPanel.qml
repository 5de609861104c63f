// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Layouts

/// Which key the song is in, which it should be in, and how far that is.
PanelCard {
    id: root

    required property QtObject model

    PanelHeading {
        Layout.fillWidth: true
        title: "Keys"
        status: root.model.semitones === 0 ? "No shift" : root.model.signedSemitoneText + " semitones"
        isReady: true
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: 14

        KeyPicker {
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            label: "Recorded key"
            keys: root.model.allKeys
            selection: root.model.sourceKey
            onChosen: id => root.model.sourceKey = id
        }

        KeyPicker {
            Layout.fillWidth: true
            Layout.preferredWidth: 1
            label: "New key"
            keys: root.model.allKeys
            selection: root.model.targetKey
            onChosen: id => root.model.targetKey = id
        }
    }

    InsetBox {
        Layout.fillWidth: true
        padding: 16
        color: Theme.textBackground

        RowLayout {
            spacing: Theme.defaultSpacing

            ColumnLayout {
                Layout.fillWidth: true
                spacing: 4

                PlainLabel {
                    Layout.fillWidth: true
                    text: root.model.intervalDescription
                    wrapMode: Text.Wrap
                }

                PlainLabel {
                    Layout.fillWidth: true
                    text: "Pitch shift " + root.model.semitones * 100 + " cents"
                    color: Theme.secondary
                    wrapMode: Text.Wrap
                }
            }

            PlainLabel {
                text: root.model.signedSemitoneText
                font: Theme.figure
                color: Theme.faded(Theme.red, 0.78)
                lineHeightMode: Text.FixedHeight
                lineHeight: 68
            }
        }
    }
}
