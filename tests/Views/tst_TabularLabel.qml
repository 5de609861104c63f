// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Views

ViewTestCase {
    id: root
    name: "TabularLabel"

    Component {
        id: component
        TabularLabel {}
    }

    function make(text) {
        const label = createTemporaryObject(component, root, { text: text });
        waitForRendering(label);
        return label;
    }

    function test_all_digits_are_equally_wide() {
        const widths = Array.from("0123456789", digit => make(digit).width);
        compare(new Set(widths).size, 1);
        compare(make("1:11").width, make("8:48").width);
        verify(make("10:00").width > make("1:00").width);
    }

    function test_no_digit_is_cut() {
        for (const digit of "0123456789") {
            const character = find(make(digit), { text: digit });
            verify(character.implicitWidth - 0.5 <= character.width, `${digit}: ${character.implicitWidth} in ${character.width}`);
        }
    }

    function test_the_longest_time_fits_into_its_frame() {
        verify(make("100:39").width <= 54);
    }

    function test_a_screen_reader_hears_one_text() {
        make("12:34");
        compare(heard(), ["StaticText 12:34"]);
    }
}
