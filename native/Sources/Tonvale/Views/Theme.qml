// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

pragma Singleton

import QtQuick

/// Every colour, font and recurring size of the window, light and dark.
QtObject {
    id: root

    /// The application binds this to the desktop's colour scheme.
    property bool isDark: systemPalette.window.hslLightness < 0.5

    readonly property SystemPalette systemPalette: SystemPalette {}

    // Grounds.
    readonly property color windowBackground: isDark ? "#1e1f22" : "#ececef"
    readonly property color material: isDark ? "#2a2b2f" : "#f8f8fa"
    readonly property color controlBackground: isDark ? "#1b1c1e" : "#ffffff"
    readonly property color textBackground: controlBackground
    readonly property color popUpBackground: isDark ? "#323338" : "#fbfbfc"

    // What stands on them. The secondary colour is the text colour at about two thirds.
    readonly property color text: isDark ? "#f1f1f4" : "#1c1c1f"
    readonly property color secondary: isDark ? "#abacb3" : "#5d5d64"
    readonly property color green: isDark ? "#40c96b" : "#17692a"
    readonly property color blue: isDark ? "#5eaaff" : "#0062cc"
    readonly property color red: isDark ? "#ff5f57" : "#d3101c"
    readonly property color separator: faded(text, isDark ? 0.14 : 0.13)

    // Controls.
    readonly property color accent: isDark ? "#1a6ad4" : "#0062cc"
    readonly property color accentText: "#ffffff"
    readonly property color focus: isDark ? "#6db3ff" : "#0a6fe0"
    readonly property color button: isDark ? "#43444a" : "#ffffff"
    readonly property color buttonEdge: isDark ? "#505158" : "#c8c8cf"
    readonly property color disabledAccent: faded(text, isDark ? 0.11 : 0.09)
    readonly property color disabledText: faded(text, isDark ? 0.36 : 0.38)
    readonly property color hovered: isDark ? "#0fffffff" : "#0b000000"
    readonly property color pressed: isDark ? "#21ffffff" : "#1c000000"
    readonly property color hoveredAccent: isDark ? "#0affffff" : "#12000000"
    readonly property color pressedAccent: isDark ? "#33000000" : "#30000000"
    readonly property color track: isDark ? "#4b4c52" : "#dadae0"
    readonly property color knob: isDark ? "#e9e9ec" : "#ffffff"
    readonly property color knobEdge: isDark ? "#00000000" : "#c4c4cb"
    readonly property color disabledKnob: isDark ? "#55565c" : "#d2d2d9"

    // Fonts.
    readonly property string family: Qt.fontFamilies().includes("Inter") ? "Inter" : Application.font.family
    readonly property font title2: Qt.font({ family: family, pixelSize: 17, weight: Font.Bold })
    readonly property font title3: Qt.font({ family: family, pixelSize: 15, weight: Font.Bold })
    readonly property font headline: Qt.font({ family: family, pixelSize: 13, weight: Font.Bold })
    readonly property font body: Qt.font({ family: family, pixelSize: 13 })
    readonly property font control: Qt.font({ family: family, pixelSize: 13, weight: Font.Medium })
    readonly property font callout: Qt.font({ family: family, pixelSize: 12 })
    readonly property font smallSystem: Qt.font({ family: family, pixelSize: 11 })
    readonly property font caption: Qt.font({ family: family, pixelSize: 10 })
    readonly property font pill: Qt.font({ family: family, pixelSize: 10, weight: Font.Medium })
    readonly property font figure: Qt.font({ family: figureLoader.font.family, pixelSize: 58, weight: Font.Black })
    readonly property FontLoader figureLoader: FontLoader {
        source: "Fonts/nunito-latin-900-normal.woff"
    }

    // Sizes.
    readonly property int radius: 8
    readonly property int controlRadius: 6
    readonly property int defaultSpacing: 8
    readonly property int captionHeight: 12

    /// `colour` at this opacity.
    function faded(colour: color, opacity: real): color {
        return Qt.rgba(colour.r, colour.g, colour.b, opacity);
    }

    function shadow(opacity: real): color {
        return Qt.rgba(0, 0, 0, opacity);
    }
}
