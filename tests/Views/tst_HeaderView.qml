// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Views

ViewTestCase {
    id: root
    name: "HeaderView"
    width: 840
    height: 200

    Component {
        id: component
        HeaderView {
            width: 840
            model: root.model
            iconSource: "image://artwork/icon"
        }
    }

    property HeaderView view

    function init_view(values) {
        view = createTemporaryObject(component, root);
        model.show(values);
        return view;
    }

    function convertButton() {
        return find(view, { isProminent: true });
    }

    function test_the_parts_stand_where_they_should() {
        init_view({});
        compare(view.height, 14 + 42 + 14);
        compare(placeIn(view, find(view, { objectName: "icon" })), "24 14 42 42");
        const title = find(view, { text: "Tonvale" });
        const subtitle = find(view, { text: "Transpose a song from one key to another." });
        compare(title.mapToItem(view, 0, 0).x, 24 + 42 + 12);
        compare(subtitle.mapToItem(view, 0, 0).y, title.mapToItem(view, 0, title.height).y + 2);
        compare(title.font.pixelSize, 15);
        compare(title.font.bold, true);
        compare(subtitle.font.pixelSize, 13);
        compare(subtitle.color, Theme.secondary);
        const convert = convertButton();
        compare(convert.mapToItem(view, convert.width, 0).x, 840 - 24);
        const clear = find(view, { text: "Clear" });
        compare(clear.mapToItem(view, clear.width, 0).x + 12, convert.mapToItem(view, 0, 0).x);
    }

    function test_the_icon_is_shown_with_round_corners() {
        init_view({});
        const picture = pictureOf(find(view, { objectName: "icon" }));
        compare(picture.pixel(21, 21), "#3b6fb5");
        compare(picture.pixel(0, 0), "#ffffff");
        compare(picture.pixel(41, 41), "#ffffff");
        compare(picture.pixel(8, 0), "#3b6fb5");
    }

    function test_clear_is_always_possible_data() {
        return Object.keys(states).map(state => ({ tag: state, state: state }));
    }

    function test_clear_is_always_possible(data) {
        init_view(states[data.state]);
        mouseClick(find(view, { text: "Clear" }));
        compare(calls(), "clear");
    }

    function test_convert_is_possible_with_a_song_and_no_export_data() {
        return [
            { tag: "no song", hasAudio: false, isExporting: false, isPossible: false },
            { tag: "song", hasAudio: true, isExporting: false, isPossible: true },
            { tag: "song, exporting", hasAudio: true, isExporting: true, isPossible: false },
            { tag: "no song, exporting", hasAudio: false, isExporting: true, isPossible: false },
        ];
    }

    function test_convert_is_possible_with_a_song_and_no_export(data) {
        init_view({ hasAudio: data.hasAudio, isExporting: data.isExporting });
        compare(convertButton().enabled, data.isPossible);
        mouseClick(convertButton());
        wait(0);  // the panel would open later
        tryCompare(model, "calls", data.isPossible ? ["chooseExportLocationAndRender"] : []);
    }

    function test_convert_follows_the_model_from_one_moment_to_the_next() {
        init_view({});
        model.show(states.shifted);
        compare(convertButton().enabled, true);
        compare(convertButton().text, "Convert to B");
        model.show(states.rendering);
        compare(convertButton().enabled, false);
        compare(convertButton().text, "Rendering...");
        model.show({ isExporting: false, convertButtonTitle: "Convert" });
        compare(convertButton().enabled, true);
        compare(convertButton().text, "Convert");
    }

    function test_the_save_panel_opens_after_the_press_is_over() {
        init_view(states.loaded);
        convertButton().clicked();
        compare(calls(), "");
        tryCompare(model, "calls", ["chooseExportLocationAndRender"]);
    }

    function test_a_screen_reader_hears_texts_and_buttons_once() {
        init_view(states.loaded);
        compare(heard(), ["StaticText Tonvale", "StaticText Transpose a song from one key to another.", "Button Clear",
            "Button Convert to Bb"]);
    }
}
