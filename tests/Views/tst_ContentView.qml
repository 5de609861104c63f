// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Views

ViewTestCase {
    id: root
    name: "ContentView"
    width: 840
    height: 680

    Component {
        id: component
        ContentView {
            width: 840
            height: 680
            model: root.model
        }
    }

    property ContentView view

    function init_view(values) {
        view = createTemporaryObject(component, root);
        model.show(values);
        waitForRendering(view);
    }

    function panel(type) {
        const search = item => {
            for (const child of Array.from(item.children)) {
                const found = child instanceof type ? child : search(child);
                if (found)
                    return found;
            }
            return null;
        };
        return search(view);
    }

    function place(type) {
        return placeIn(view, panel(type)).split(" ").map(Number);
    }

    function test_the_panels_stand_in_two_columns() {
        init_view({});
        compare(place(HeaderView), [0, 0, 840, 70]);
        compare(placeIn(view, find(view, { color: Theme.separator })), "0 70 840 1");
        compare(place(DropPanel), [22, 93, 380, 340]);
        compare(place(TrackPanel).slice(0, 3), [22, 93 + 340 + 16, 380]);
        const keys = place(KeysPanel);
        compare(keys.slice(0, 3), [422, 93, 840 - 422 - 22]);
        compare(place(PreviewPanel).slice(0, 3), [422, 93 + keys[3] + 16, 396]);
    }

    function test_a_larger_window_widens_only_the_right_column() {
        init_view({});
        const heights = [DropPanel, TrackPanel, KeysPanel, PreviewPanel].map(type => place(type)[3]);
        view.width = 1600;
        view.height = 1200;
        waitForRendering(view);
        compare(place(DropPanel), [22, 93, 380, 340]);
        compare(place(TrackPanel)[2], 380);
        compare(place(KeysPanel).slice(0, 3), [422, 93, 1600 - 422 - 22]);
        compare(place(PreviewPanel)[2], 1156);
        compare([DropPanel, TrackPanel, KeysPanel].map(type => place(type)[3]), heights.slice(0, 3));
    }

    function test_the_ground_fills_what_the_panels_leave() {
        init_view({});
        const ground = find(view, { color: Theme.windowBackground });
        compare(placeIn(view, ground), "0 71 840 609");
    }

    function test_everything_fits_at_the_smallest_size_data() {
        return Object.keys(states).map(state => ({ tag: state }));
    }

    function test_everything_fits_at_the_smallest_size(data) {
        init_view(states[data.tag]);
        for (const type of [TrackPanel, PreviewPanel]) {
            const [x, y, width, height] = place(type);
            verify(y + height <= 680 - 6, `ends at ${y + height}`);
        }
        const whole = all(view, { textFormat: Text.PlainText }).filter(text => text.visible);
        for (const text of whole) {
            const mayBeCut = [model.fileName, model.fileDetail, model.songDetailsMessage].includes(text.text);
            verify(mayBeCut || !text.truncated, text.text);
            verify(text.width >= Math.floor(text.contentWidth) || mayBeCut, text.text);
        }
    }

    function test_a_screen_reader_hears_everything_in_order() {
        init_view(states.detected);
        compare(heard(), ["StaticText Tonvale", "StaticText Transpose a song from one key to another.", "Button Clear",
            "Button Convert to Eb", "StaticText Drop an audio file",
            "StaticText Choose a recording, then set the original key and destination key.", "Button Browse files",
            "StaticText Track", "StaticText File loaded", "StaticText Autumn Evening (live in Bergen).mp3",
            "StaticText MP3 audio file", "Button Auto Detect Song Details",
            "StaticText Key  : F# / Gb major - Confidence 100%", "StaticText Tempo  : 128 BPM - Unverified",
            "StaticText Keys", "StaticText +3 semitones", "StaticText Recorded key", "ComboBox Recorded key",
            "StaticText C major", "StaticText New key", "ComboBox New key", "StaticText D# / Eb major",
            "StaticText Up 3 semitones.", "StaticText Pitch shift 300 cents", "StaticText +3", "StaticText Preview",
            "StaticText Ready", "Button Play preview",
            "StaticText Drag the timeline or use the skip buttons to jump through the song.", "Slider Position",
            "StaticText 0:00", "Button Back 15 seconds", "Button Forward 15 seconds", "StaticText 4:07"]);
    }

    function focused() {
        const item = root.Window.activeFocusItem;
        return item.Accessible.name;
    }

    function test_the_tabulator_reaches_every_control_in_order() {
        init_view(states.loaded);
        const names = ["Clear", "Convert to Bb", "Browse files", "Auto Detect Song Details", "Recorded key", "New key",
            "Play preview", "Position", "Back 15 seconds", "Forward 15 seconds"];
        for (const name of names) {
            keyClick(Qt.Key_Tab);
            compare(focused(), name);
            compare(root.Window.activeFocusItem.visualFocus, true);
        }
        for (const name of names.slice(0, -1).reverse()) {
            keyClick(Qt.Key_Tab, Qt.ShiftModifier);
            compare(focused(), name);
        }
    }

    function test_the_tabulator_leaves_out_what_is_disabled() {
        init_view({});
        for (const name of ["Clear", "Browse files", "Recorded key", "New key"]) {
            keyClick(Qt.Key_Tab);
            compare(focused(), name);
        }
    }

    function test_the_space_bar_presses_every_button() {
        init_view(states.loaded);
        const commands = ["clear", "chooseExportLocationAndRender", "chooseFile", "autoDetectSongDetails"];
        for (const command of commands) {
            keyClick(Qt.Key_Tab);
            keyClick(Qt.Key_Space);
            tryVerify(() => model.calls.slice(-1)[0] === command, 1000, command);
        }
    }

    function test_a_screen_reader_presses_every_button() {
        init_view(states.loaded);
        const commands = {
            "Clear": "clear",
            "Convert to Bb": "chooseExportLocationAndRender",
            "Browse files": "chooseFile",
            "Auto Detect Song Details": "autoDetectSongDetails",
            "Play preview": "playPreview",
            "Back 15 seconds": "skipPreview -15",
            "Forward 15 seconds": "skipPreview 15",
        };
        for (const name in commands) {
            verify(reader.act(root.Window.window, "Button", name, "Press"), name);
            tryVerify(() => model.calls.slice(-1)[0] === commands[name], 1000, name);
        }
    }

    function test_a_screen_reader_cannot_press_what_is_disabled() {
        init_view({});
        for (const name of ["Convert", "Auto Detect Song Details", "Play preview", "Back 15 seconds", "Forward 15 seconds"])
            reader.act(root.Window.window, "Button", name, "Press");
        wait(0);
        compare(calls(), "");
    }

    function test_the_space_bar_plays_after_a_key_was_chosen_with_the_mouse() {
        init_view(states.loaded);
        model.fileLoaded();
        const picker = find(view, { textRole: "name" });
        mouseClick(picker);
        tryCompare(picker.popup, "opened", true);
        compare(picker.activeFocus, true);
        keyClick("e");
        keyClick(Qt.Key_Return);
        tryCompare(picker.popup, "visible", false);
        compare(model.sourceKey, "eMajor");
        keyClick(Qt.Key_Space);
        compare(calls(), "playPreview");
    }

    function test_the_focus_stays_on_a_picker_that_was_opened_with_the_keyboard() {
        init_view(states.loaded);
        const picker = find(view, { textRole: "name" });
        picker.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Space);
        tryCompare(picker.popup, "opened", true);
        keyClick(Qt.Key_Escape);
        tryCompare(picker.popup, "visible", false);
        compare(picker.activeFocus, true);
    }

    function test_both_schemes_are_drawn_data() {
        return [{ tag: "light", isDark: false }, { tag: "dark", isDark: true }];
    }

    function test_both_schemes_are_drawn(data) {
        Theme.isDark = data.isDark;
        init_view(states.shifted);
        const picture = pictureOf(view);
        compare(Qt.color(picture.pixel(10, 300)), Theme.windowBackground);
        compare(Qt.color(picture.pixel(60, 300)), Theme.material);
    }
}
