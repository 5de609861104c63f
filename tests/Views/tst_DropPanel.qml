// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Views

ViewTestCase {
    id: root
    name: "DropPanel"
    width: 400
    height: 400

    Component {
        id: component
        DropPanel {
            x: 10
            y: 10
            width: 380
            model: root.model
        }
    }

    readonly property point inside: Qt.point(30, 300)
    property DropPanel view

    function init_view() {
        view = createTemporaryObject(component, root);
    }

    function window() {
        return root.Window.window;
    }

    function outline() {
        return Array.from(view.children).find(child => child instanceof DashedOutline);
    }

    function test_the_parts_stand_below_each_other() {
        init_view();
        compare([view.width, view.height], [380, 340]);
        const title = find(view, { text: "Drop an audio file" });
        const hint = find(view, { text: "Choose a recording, then set the original key and destination key." });
        const button = find(view, { text: "Browse files" });
        const badge = find(view, { radius: 39 });
        compare([badge.width, badge.height], [78, 78]);
        compare(badge.color, Theme.faded(Theme.green, 0.14));
        compare(find(badge, { name: "square.and.arrow.down" }).fontSize, 38);
        compare(badge.y + 78 + 14, title.y);
        compare(title.y + title.height + 14, hint.y);
        compare(hint.y + hint.height + 14, button.y);
        compare(hint.mapToItem(view, 0, 0).x, 20);
        compare(hint.width, 340);
        fuzzyCompare(title.x + title.width / 2, 170, 0.6);
        compare(title.font.pixelSize, 17);
        compare(title.font.bold, true);
        compare(hint.color, Theme.secondary);
        compare(hint.maximumLineCount, 3);
        compare(hint.truncated, false);
        compare(hint.horizontalAlignment, Text.AlignHCenter);
        compare(button.height, 32);
        compare(button.isProminent, true);
        fuzzyCompare(badge.parent.y, (340 - badge.parent.height) / 2, 1);
    }

    function test_browse_files_opens_the_panel_after_the_press_is_over() {
        init_view();
        find(view, { text: "Browse files" }).clicked();
        compare(calls(), "");
        tryCompare(model, "calls", ["chooseFile"]);
    }

    function test_browse_files_is_always_possible() {
        init_view();
        for (const state in states) {
            model.show(states[state]);
            compare(find(view, { text: "Browse files" }).enabled, true, state);
        }
    }

    function test_a_file_that_hovers_turns_the_outline_green_until_it_leaves() {
        init_view();
        const calm = Theme.faded(Theme.secondary, 0.42);
        compare(outline().color, calm);
        compare(drag.enterWithUrls(window(), inside, ["file:///song.mp3"]), true);
        compare(view.isTargeted, true);
        compare(outline().color, Theme.green);
        drag.leave(window());
        compare(view.isTargeted, false);
        compare(outline().color, calm);
    }

    function test_the_outline_is_calm_again_after_the_drop() {
        init_view();
        drag.enterWithUrls(window(), inside, ["file:///song.mp3"]);
        drag.drop(window(), inside);
        compare(view.isTargeted, false);
    }

    function test_what_is_no_file_is_not_taken_data() {
        return [
            { tag: "link", urls: ["https://tonvale.example/song.mp3"] },
            { tag: "nothing", urls: [] },
        ];
    }

    function test_what_is_no_file_is_not_taken(data) {
        init_view();
        compare(drag.enterWithUrls(window(), inside, data.urls), false);
        compare(view.isTargeted, false);
        compare(drag.drop(window(), inside), "refused");
        compare(calls(), "");
    }

    function test_text_is_not_taken() {
        init_view();
        compare(drag.enterWithText(window(), inside, "file:///song.mp3"), false);
        compare(view.isTargeted, false);
        compare(drag.drop(window(), inside), "refused");
        compare(calls(), "");
    }

    function test_all_files_go_to_the_model_in_order() {
        init_view();
        const urls = ["https://tonvale.example/a.mp3", "file:///b%23%25.mp3", "file:///c.wav"];
        compare(drag.enterWithUrls(window(), inside, urls), true);
        compare(drag.drop(window(), inside), "copied");
        compare(calls(), "handleDroppedURLs");
        compare(model.droppedUrls, urls);
    }

    function test_a_drop_that_the_model_refuses_is_refused() {
        init_view();
        model.takesDrops = false;
        drag.enterWithUrls(window(), inside, ["file:///song.mp3"]);
        compare(drag.drop(window(), inside), "refused");
        compare(calls(), "handleDroppedURLs");
    }

    function test_the_outline_is_dashed_along_the_edge() {
        init_view();
        compare([outline().x, outline().y, outline().width, outline().height], [-1, -1, 382, 342]);
        const picture = pictureOf(outline());
        let changes = 0;
        for (let x = 20; x < 160; ++x)
            changes += (picture.darkness(x, 1) > 30) !== (picture.darkness(x - 1, 1) > 30) ? 1 : 0;
        compare(changes, 2 * 140 / 7);  // 4 on and 3 off
        verify(picture.darkness(191, 4) < 10);
    }

    function test_a_screen_reader_hears_texts_and_the_button() {
        init_view();
        compare(heard(), ["StaticText Drop an audio file",
            "StaticText Choose a recording, then set the original key and destination key.", "Button Browse files"]);
    }
}
