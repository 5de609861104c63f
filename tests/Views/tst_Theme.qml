// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Views

ViewTestCase {
    id: root
    name: "Theme"

    /// `colour` laid over an opaque ground.
    function over(colour, ground) {
        const mix = (above, below) => above * colour.a + below * (1 - colour.a);
        return Qt.rgba(mix(colour.r, ground.r), mix(colour.g, ground.g), mix(colour.b, ground.b), 1);
    }

    function luminance(colour) {
        const linear = part => part <= 0.04045 ? part / 12.92 : Math.pow((part + 0.055) / 1.055, 2.4);
        return 0.2126 * linear(colour.r) + 0.7152 * linear(colour.g) + 0.0722 * linear(colour.b);
    }

    /// The contrast ratio of the Web Content Accessibility Guidelines.
    function contrast(colour, ground) {
        const light = [luminance(over(colour, ground)), luminance(ground)].sort((a, b) => b - a);
        return (light[0] + 0.05) / (light[1] + 0.05);
    }

    function test_the_contrast_is_reckoned_as_the_guidelines_say() {
        fuzzyCompare(contrast(Qt.rgba(0, 0, 0, 1), Qt.rgba(1, 1, 1, 1)), 21, 0.001);
        fuzzyCompare(contrast(Qt.color("#767676"), Qt.rgba(1, 1, 1, 1)), 4.54, 0.01);
        fuzzyCompare(contrast(Qt.rgba(0, 0, 0, 0.5), Qt.rgba(1, 1, 1, 1)), 3.98, 0.03);
    }

    /// Every text and what it stands on, as [name, text, ground, least contrast].
    function pairs() {
        const t = Theme;
        const button = state => over(state, t.button);
        const accent = state => over(state, t.accent);
        return [
            ["title", t.text, t.windowBackground, 4.5],
            ["subtitle", t.secondary, t.windowBackground, 4.5],
            ["panel text", t.text, t.material, 4.5],
            ["panel hint", t.secondary, t.material, 4.5],
            ["green pill", t.green, over(t.faded(t.green, 0.13), t.material), 4.5],
            ["grey pill", t.secondary, over(t.faded(t.secondary, 0.1), t.material), 4.5],
            ["drop badge", t.green, over(t.faded(t.green, 0.14), t.material), 4.5],
            ["file badge", t.blue, over(t.faded(t.blue, 0.12), t.controlBackground), 4.5],
            ["file name", t.text, t.controlBackground, 4.5],
            ["file detail", t.secondary, t.controlBackground, 4.5],
            ["interval", t.text, t.textBackground, 4.5],
            ["cents", t.secondary, t.textBackground, 4.5],
            ["figure", t.faded(t.red, 0.78), t.textBackground, 3],
            ["button", t.text, t.button, 4.5],
            ["hovered button", t.text, button(t.hovered), 4.5],
            ["pressed button", t.text, button(t.pressed), 4.5],
            ["picker's arrows", t.secondary, t.button, 3],
            ["prominent button", t.accentText, t.accent, 4.5],
            ["hovered prominent button", t.accentText, accent(t.hoveredAccent), 4.5],
            ["pressed prominent button", t.accentText, accent(t.pressedAccent), 4.5],
            ["list entry", t.text, t.popUpBackground, 4.5],
            ["highlighted list entry", t.accentText, t.accent, 4.5],
            ["focus ring on a panel", t.focus, t.material, 3],
            ["focus ring in a box", t.focus, t.controlBackground, 3],
            ["focus ring in the header", t.focus, t.windowBackground, 3],
            ["drop outline", t.green, t.windowBackground, 3],
            ["played part of the timeline", t.accent, t.controlBackground, 3],
        ];
    }

    function test_every_text_can_be_read_data() {
        return [{ tag: "light", isDark: false }, { tag: "dark", isDark: true }];
    }

    function test_every_text_can_be_read(data) {
        Theme.isDark = data.isDark;
        for (const [name, text, ground, least] of pairs()) {
            compare(ground.a, 1, name);
            const ratio = contrast(text, ground);
            verify(ratio >= least, `${name}: ${ratio.toFixed(2)}, not ${least}`);
        }
    }

    function test_the_stated_opacities_are_kept() {
        const colour = Theme.faded(Qt.rgba(0.2, 0.4, 0.6, 1), 0.5);
        compare([colour.r, colour.g, colour.b, colour.a].map(part => part.toFixed(2)), ["0.20", "0.40", "0.60", "0.50"]);
    }

    function test_the_scheme_is_followed_at_once() {
        Theme.isDark = false;
        verify(Theme.windowBackground.hslLightness > 0.8);
        verify(Theme.text.hslLightness < 0.2);
        Theme.isDark = true;
        verify(Theme.windowBackground.hslLightness < 0.2);
        verify(Theme.text.hslLightness > 0.8);
    }

    function test_the_faces_are_there() {
        compare(Theme.body.family, "Inter");
        compare(Theme.figure.family, "Nunito Black");
    }
}
