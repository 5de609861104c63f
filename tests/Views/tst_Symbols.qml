// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Views

ViewTestCase {
    id: root
    name: "SymbolImage"
    width: 200
    height: 100

    Component {
        id: component
        SymbolImage {
            fontSize: 40
            color: "black"
        }
    }

    readonly property var names: ["square.and.arrow.down", "music.note", "waveform", "play.fill", "stop.fill",
        "gobackward.15", "goforward.15", "checkmark", "chevron.up.chevron.down"]

    /// The opacity of every second pixel of a symbol.
    function drawn(name) {
        const symbol = createTemporaryObject(component, root, { name: name });
        const picture = pictureOf(symbol);
        const opacities = [];
        for (let y = 0; y < symbol.height; y += 2)
            for (let x = 0; x < symbol.width; x += 2)
                opacities.push(picture.darkness(x, y));
        symbol.visible = false;
        return opacities;
    }

    /// The opacities of the pixels along the edges of a symbol's square.
    function edges(name) {
        const symbol = createTemporaryObject(component, root, { name: name });
        const picture = pictureOf(symbol);
        const last = symbol.width - 1;
        const opacities = [];
        for (let i = 0; i <= last; ++i)
            opacities.push(picture.darkness(i, 0), picture.darkness(i, last), picture.darkness(0, i), picture.darkness(last, i));
        symbol.visible = false;
        return opacities;
    }

    function test_it_is_a_little_larger_than_its_font_size() {
        const symbol = createTemporaryObject(component, root, { name: "stop.fill" });
        compare([symbol.width, symbol.height], [48, 48]);
        symbol.fontSize = 13;
        compare([symbol.width, symbol.height], [16, 16]);
    }

    function test_every_symbol_is_drawn_inside_its_square() {
        for (const name of names) {
            const opacities = drawn(name);
            const full = opacities.filter(opacity => opacity === 255).length;
            verify(full > 0.03 * opacities.length, name + " is hardly there");
            verify(full < 0.6 * opacities.length, name + " is a blot");
            compare(Math.max(...edges(name)), 0, name + " touches its edge");
        }
    }

    function test_no_two_symbols_are_alike() {
        const pictures = names.map(name => drawn(name).join());
        compare(new Set(pictures).size, names.length);
    }

    function test_the_arrows_mirror_each_other_but_not_their_figures() {
        const back = drawn("gobackward.15");
        const forward = drawn("goforward.15");
        for (let row = 0; row < 24; ++row) {
            for (let column = 0; column < 24; ++column) {
                const isFigure = row > 8 && row < 18 && column > 6 && column < 17;
                const expected = isFigure ? back[24 * row + column] : forward[24 * row + column];
                const actual = isFigure ? forward[24 * row + column] : back[24 * row + 23 - column];
                // Only every second pixel is looked at: the edges of lines may differ a little.
                if (isFigure)
                    compare(actual, expected, `figure at ${column}, ${row}`);
                else if (expected === 255 && column > 0)
                    verify(actual > 0 || back[24 * row + 24 - column] > 0, `arrow at ${column}, ${row}`);
            }
        }
        verify(back.join() !== forward.join());
    }

    function test_an_unknown_name_is_an_empty_symbol() {
        compare(Math.max(...drawn("nothing")), 0);
    }

    function test_the_colour_is_followed() {
        const symbol = createTemporaryObject(component, root, { name: "stop.fill" });
        compare(pictureOf(symbol).pixel(24, 24), "#000000");
        symbol.color = "#ff0000";
        compare(pictureOf(symbol).pixel(24, 24), "#ff0000");
    }
}
