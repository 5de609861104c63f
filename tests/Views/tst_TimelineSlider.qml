// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtTest
import Tonvale.Views

ViewTestCase {
    id: root
    name: "TimelineSlider"
    width: 400
    height: 100

    Component {
        id: component
        TimelineSlider {
            width: 318
            model: root.model
        }
    }

    property TimelineSlider view

    function init_view(values) {
        view = createTemporaryObject(component, root);
        model.show(Object.assign({ hasAudio: true, duration: 200 }, values));
    }

    /// The calls with repeats of the same call in a row left out.
    function outline() {
        return model.calls.filter((call, index) => call !== model.calls[index - 1]);
    }

    readonly property var oneEditing: ["timelineEditingChanged true", "setTimelinePreview", "timelineEditingChanged false"]

    function test_the_range_is_never_shorter_than_a_second_data() {
        return [
            { tag: "none", duration: 0, to: 1 },
            { tag: "half a second", duration: 0.5, to: 1 },
            { tag: "a second", duration: 1, to: 1 },
            { tag: "one and a half", duration: 1.5, to: 1.5 },
            { tag: "a song", duration: 247.3, to: 247.3 },
            { tag: "not a number", duration: NaN, to: 1 },
        ];
    }

    function test_the_range_is_never_shorter_than_a_second(data) {
        init_view({ duration: data.duration });
        compare([view.from, view.to], [0, data.to]);
        compare([view.minimumValue, view.maximumValue], [0, data.to]);
        compare(view.stepSize, 0);
    }

    function test_the_value_follows_the_model_before_and_after_a_drag() {
        init_view({ currentTime: 50 });
        compare(view.value, 50);
        mouseDrag(view, 160, 10, 60, 0);
        model.show({ currentTime: 33 });
        compare(view.value, 33);
    }

    function test_a_drag_is_one_start_many_moves_and_one_end() {
        init_view({});
        mousePress(view, 9, 10);
        for (let x = 12; x < 200; x += 6)
            mouseMove(view, x, 10);
        mouseRelease(view, 198, 10);
        compare(outline(), oneEditing);
        verify(model.calls.length > 20);
        fuzzyCompare(model.currentTime, 200 * (198 - 9) / 300, 2);
    }

    function test_each_move_reaches_the_model_at_once() {
        init_view({});
        mousePress(view, 9, 10);
        mouseMove(view, 60, 10);
        mouseMove(view, 159, 10);
        fuzzyCompare(model.currentTime, 100, 1);
        mouseRelease(view, 159, 10);
    }

    function test_a_plain_click_moves_before_it_ends() {
        init_view({});
        mouseClick(view, 159, 10);
        compare(outline(), oneEditing);
        fuzzyCompare(model.currentTime, 100, 1);
    }

    function test_a_tick_during_a_drag_is_shown() {
        init_view({});
        mousePress(view, 9, 10);
        mouseMove(view, 60, 10);
        model.show({ currentTime: 150 });
        compare(view.value, 150);
        mouseRelease(view, 60, 10);
    }

    function test_a_drag_ends_when_the_song_goes_away() {
        init_view({});
        mousePress(view, 9, 10);
        mouseMove(view, 60, 10);
        model.show({ hasAudio: false });
        mouseRelease(view, 60, 10);
        compare(model.calls.filter(call => call === "timelineEditingChanged true").length, 1);
        compare(model.calls.filter(call => call === "timelineEditingChanged false").length, 1);
    }

    function test_keys_move_the_position_data() {
        return [
            { tag: "right", key: Qt.Key_Right, to: 105 },
            { tag: "left", key: Qt.Key_Left, to: 95 },
            { tag: "up", key: Qt.Key_Up, to: 105 },
            { tag: "down", key: Qt.Key_Down, to: 95 },
            { tag: "page up", key: Qt.Key_PageUp, to: 115 },
            { tag: "page down", key: Qt.Key_PageDown, to: 85 },
            { tag: "home", key: Qt.Key_Home, to: 0 },
            { tag: "end", key: Qt.Key_End, to: 200 },
        ];
    }

    function test_keys_move_the_position(data) {
        init_view({ currentTime: 100 });
        view.forceActiveFocus(Qt.TabFocusReason);
        keyClick(data.key);
        compare(model.currentTime, data.to);
        compare(model.calls, oneEditing);
        model.show({ currentTime: 42 });
        compare(view.value, 42);
    }

    function test_keys_stop_at_the_ends() {
        init_view({ currentTime: 1 });
        view.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Left);
        compare(model.currentTime, 0);
        model.show({ currentTime: 199 });
        keyClick(Qt.Key_PageUp);
        compare(model.currentTime, 200);
    }

    function test_a_held_key_is_one_editing() {
        init_view({ currentTime: 100 });
        view.forceActiveFocus(Qt.TabFocusReason);
        keys.hold(root.Window.window, Qt.Key_Right, 4);
        compare(outline(), oneEditing);
        compare(model.currentTime, 125);
    }

    function test_a_key_that_loses_the_focus_ends_its_editing() {
        init_view({ currentTime: 100 });
        view.forceActiveFocus(Qt.TabFocusReason);
        keyPress(Qt.Key_Right);
        view.focus = false;
        keyRelease(Qt.Key_Right);
        compare(model.calls, oneEditing);
    }

    function test_the_wheel_changes_nothing() {
        init_view({});
        mouseWheel(view, 100, 10, 0, 120);
        compare(calls(), "");
    }

    function test_a_screen_reader_hears_value_and_range() {
        init_view({ currentTime: 50 });
        const entry = reader.entries(root.Window.window)[0];
        compare([entry.role, entry.name], ["Slider", "Position"]);
        compare([entry.value, entry.minimum, entry.maximum], [50, 0, 200]);
    }

    function test_a_screen_reader_can_move_the_position() {
        init_view({ currentTime: 100 });
        verify(reader.act(root.Window.window, "Slider", "Position", "Increase"));
        compare(model.currentTime, 105);
        compare(model.calls, oneEditing);
        model.calls = [];
        verify(reader.act(root.Window.window, "Slider", "Position", "Decrease"));
        compare(model.currentTime, 100);
        compare(model.calls, oneEditing);
        model.calls = [];
        verify(reader.setValue(root.Window.window, "Slider", "Position", 120));
        compare(model.currentTime, 120);
        compare(model.calls, oneEditing);
        model.show({ currentTime: 7 });
        compare(view.value, 7);
    }

    function test_a_screen_reader_moves_nothing_without_a_song() {
        init_view({ hasAudio: false });
        reader.act(root.Window.window, "Slider", "Position", "Increase");
        compare(calls(), "");
    }
}
