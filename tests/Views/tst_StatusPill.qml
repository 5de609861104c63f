// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Views

ViewTestCase {
    id: root
    name: "StatusPill"

    Component {
        id: component
        StatusPill {}
    }

    function make(text, isReady) {
        return createTemporaryObject(component, root, { text: text, isReady: isReady });
    }

    function test_an_empty_text_leaves_a_capsule_of_the_padding() {
        const pill = make("", true);
        compare([pill.width, pill.height], [20, 12]);
    }

    function test_the_text_is_padded_by_10_and_6() {
        const pill = make("Ready", true);
        const label = find(pill, { text: "Ready" });
        compare(pill.width, Math.ceil(label.implicitWidth) + 20);
        compare([label.x, label.y], [10, 6]);
        compare(label.y + label.height + 6, pill.height);
        compare(label.font.pixelSize, 10);
    }

    function test_the_looks_data() {
        return [
            { tag: "ready", isReady: true, ground: Theme.faded(Theme.green, 0.13), text: Theme.green },
            { tag: "not ready", isReady: false, ground: Theme.faded(Theme.secondary, 0.1), text: Theme.secondary },
        ];
    }

    function test_the_looks(data) {
        const pill = make("Ready", data.isReady);
        const ground = pill.children[0];
        compare(ground.color, data.ground);
        compare(ground.radius, pill.height / 2);
        compare(find(pill, { text: "Ready" }).color, data.text);
    }

    function test_markup_is_shown_as_it_is() {
        const pill = make("<b>bold</b>  &amp;", true);
        const label = find(pill, { text: "<b>bold</b>  &amp;" });
        compare(label.textFormat, Text.PlainText);
        compare(heard(), ["StaticText <b>bold</b>  &amp;"]);
    }
}
