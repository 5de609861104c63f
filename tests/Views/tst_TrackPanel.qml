// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Views

ViewTestCase {
    id: root
    name: "TrackPanel"
    width: 400
    height: 300

    Component {
        id: component
        TrackPanel {
            width: 380
            height: implicitHeight
            model: root.model
        }
    }

    property TrackPanel view

    function init_view(values) {
        view = createTemporaryObject(component, root);
        model.show(values);
        waitForRendering(view);
    }

    function test_the_pill_shows_the_file_status_data() {
        return [
            { tag: "no song", values: {}, text: "No file selected", isReady: false },
            { tag: "song", values: states.loaded, text: "File loaded", isReady: true },
            { tag: "song, export failed", values: states.failed, text: "File loaded", isReady: true },
        ];
    }

    function test_the_pill_shows_the_file_status(data) {
        init_view(data.values);
        compare(find(view, { text: data.text, isReady: data.isReady }) !== null, true);
    }

    function test_name_detail_and_pill_follow_the_model() {
        init_view({});
        compare(heard().slice(0, 4), ["StaticText Track", "StaticText No file selected", "StaticText Waiting for audio",
            "StaticText MP3, WAV, M4A, AIFF, and other browser-readable formats"]);
        model.show(states.loaded);
        compare(heard(), ["StaticText Track", "StaticText File loaded", "StaticText Autumn Evening (live in Bergen).mp3",
            "StaticText MP3 audio file", "Button Auto Detect Song Details"]);
    }

    function test_the_card_has_its_sizes() {
        init_view(states.loaded);
        const heading = find(view, { title: "Track" });
        compare(placeIn(view, heading), "18 18 344 24");
        compare(find(heading, { text: "Track" }).font.bold, true);
        const badge = find(view, { color: Theme.faded(Theme.blue, 0.12) });
        const box = find(view, { padding: 12 });
        compare(placeIn(view, box), "18 56 344 " + (24 + 50));
        compare(placeIn(box, badge), "12 12 50 50");
        compare(badge.radius, 8);
        compare(find(badge, { name: "music.note" }).fontSize, 30);
        compare([box.radius, box.border.width], [8, 1]);
        compare(box.color, Theme.controlBackground);
        compare(box.border.color, Theme.faded(Theme.secondary, 0.18));
        const name = find(view, { text: "Autumn Evening (live in Bergen).mp3" });
        const detail = find(view, { text: "MP3 audio file" });
        compare(name.mapToItem(box, 0, 0).x, 12 + 50 + 12);
        compare(name.y + name.height + 3, detail.y);
        compare(name.font.bold, true);
        compare(detail.color, Theme.secondary);
    }

    function test_long_texts_are_cut() {
        init_view(states.fullestLines);
        const name = find(view, { text: model.fileName });
        const detail = find(view, { text: model.fileDetail });
        compare([name.lineCount, name.truncated], [1, true]);
        compare([detail.lineCount, detail.truncated], [2, true]);
    }

    function test_markup_in_a_name_is_shown_as_it_is() {
        init_view({ fileName: "<b>a</b>.mp3", fileDetail: "&lt;  <i>b</i>" });
        compare(find(view, { text: "<b>a</b>.mp3" }).textFormat, Text.PlainText);
        compare(find(view, { text: "&lt;  <i>b</i>" }).textFormat, Text.PlainText);
    }

    function test_the_shadow_falls_downwards() {
        init_view({});
        const shadow = view.children[0];
        compare([shadow.radius, shadow.blurRadius, shadow.color], [8, 24, Qt.rgba(0, 0, 0, 0.08)]);
        compare(shadow.y + shadow.reach, 12);
        compare(shadow.x + shadow.reach, 0);
        compare(shadow.width - 2 * shadow.reach, view.width);
        compare(shadow.height - 2 * shadow.reach, view.height);
    }
}
