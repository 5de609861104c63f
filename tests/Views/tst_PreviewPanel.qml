// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Views

ViewTestCase {
    id: root
    name: "PreviewPanel"
    width: 400
    height: 300

    Component {
        id: component
        PreviewPanel {
            width: 396
            height: implicitHeight
            model: root.model
        }
    }

    property PreviewPanel view

    function init_view(values) {
        view = createTemporaryObject(component, root);
        model.show(values);
        waitForRendering(view);
    }

    function playButton() {
        return find(view, { isProminent: true });
    }

    function test_the_pill_is_green_while_the_preview_plays_data() {
        return [
            { tag: "empty", text: "Unavailable", isReady: false },
            { tag: "loaded", text: "Ready", isReady: false },
            { tag: "playing", text: "Playing", isReady: true },
            { tag: "saved", text: "Saved +3 semitones", isReady: false },
        ];
    }

    function test_the_pill_is_green_while_the_preview_plays(data) {
        init_view(states[data.tag]);
        compare(find(view, { text: data.text, isReady: data.isReady }) !== null, true);
    }

    function test_without_a_song_every_control_is_disabled() {
        init_view({});
        const controls = [playButton(), find(view, { from: 0 }), find(view, { text: "Back 15 seconds" }),
            find(view, { text: "Forward 15 seconds" })];
        compare(controls.map(control => control.enabled), [false, false, false, false]);
        for (const control of controls)
            mouseClick(control);
        compare(calls(), "");
        model.show(states.loaded);
        compare(controls.map(control => control.enabled), [true, true, true, true]);
        model.show({ hasAudio: false });
        compare(controls.map(control => control.enabled), [false, false, false, false]);
    }

    function test_play_and_stop_share_a_button() {
        init_view(states.loaded);
        compare([playButton().text, playButton().symbol], ["Play preview", "play.fill"]);
        mouseClick(playButton());
        compare(calls(), "playPreview");
        const width = playButton().width;
        model.show({ isPreviewing: true });
        compare([playButton().text, playButton().symbol], ["Stop", "stop.fill"]);
        compare(playButton().width, width);
        mouseClick(playButton());
        compare(calls(), "playPreview, stopPreview");
    }

    function test_two_quick_presses_play_and_stop() {
        init_view(states.loaded);
        model.callsChanged.connect(() => model.isPreviewing = model.calls.slice(-1)[0] === "playPreview");
        mouseDoubleClickSequence(playButton());
        compare(calls(), "playPreview, stopPreview");
    }

    function test_after_a_load_the_space_bar_plays() {
        init_view(states.loaded);
        model.fileLoaded();
        compare(playButton().activeFocus, true);
        compare(playButton().visualFocus, true);
        keyClick(Qt.Key_Space);
        compare(calls(), "playPreview");
    }

    function test_the_next_load_shows_the_focus_too() {
        init_view(states.loaded);
        model.fileLoaded();
        model.show({ hasAudio: false });
        compare(playButton().activeFocus, false);
        model.show(states.loaded);
        model.fileLoaded();
        compare(hasRing(playButton()), true);
    }

    function hasRing(control) {
        return find(control, { around: Theme.controlRadius }).visible;
    }

    function test_the_ring_outlasts_a_look_at_another_window() {
        init_view(states.loaded);
        const button = playButton();
        button.forceActiveFocus(Qt.TabFocusReason);
        compare(hasRing(button), true);
        for (const reason of [Qt.ActiveWindowFocusReason, Qt.PopupFocusReason, Qt.MenuBarFocusReason]) {
            find(view, { text: "Back 15 seconds" }).forceActiveFocus(reason);
            compare(hasRing(button), false);
            button.forceActiveFocus(reason);
            compare(hasRing(button), true);
        }
        find(view, { text: "Back 15 seconds" }).forceActiveFocus(Qt.TabFocusReason);
        button.forceActiveFocus(Qt.PopupFocusReason);
        compare(hasRing(button), false);
    }

    function test_the_ring_shows_a_focus_that_a_screen_reader_sets() {
        init_view(states.loaded);
        for (const name of ["Play preview", "Back 15 seconds"]) {
            verify(reader.act(root.Window.window, "Button", name, "SetFocus"));
            compare(hasRing(find(view, { text: name })), true, name);
        }
        compare(hasRing(playButton()), false);
    }

    function test_a_click_sets_no_ring() {
        init_view(states.loaded);
        playButton().forceActiveFocus(Qt.MouseFocusReason);
        compare(hasRing(playButton()), false);
    }

    function test_return_presses_too() {
        init_view(states.loaded);
        model.fileLoaded();
        keyClick(Qt.Key_Return);
        keyClick(Qt.Key_Enter);
        compare(calls(), "playPreview, playPreview");
    }

    function test_clicks_leave_the_focus_on_play() {
        init_view(states.loaded);
        model.fileLoaded();
        mouseClick(find(view, { text: "Forward 15 seconds" }));
        mouseClick(find(view, { from: 0 }));
        compare(playButton().activeFocus, true);
    }

    function test_the_skip_buttons_skip_15_seconds() {
        init_view(states.loaded);
        mouseClick(find(view, { text: "Back 15 seconds" }));
        mouseClick(find(view, { text: "Forward 15 seconds" }));
        compare(calls(), "skipPreview -15, skipPreview 15");
    }

    function test_the_skip_buttons_show_symbols_only() {
        init_view(states.loaded);
        const back = find(view, { text: "Back 15 seconds" });
        compare([back.symbol, find(view, { text: "Forward 15 seconds" }).symbol], ["gobackward.15", "goforward.15"]);
        compare(all(back, { textFormat: Text.PlainText }).length, 0);
    }

    function test_the_hint_is_whole_at_the_narrowest_data() {
        return [{ tag: "empty" }, { tag: "loaded" }, { tag: "playing" }];
    }

    function test_the_hint_is_whole_at_the_narrowest(data) {
        init_view(states[data.tag]);
        const hint = find(view, { text: model.previewHint });
        compare(hint.truncated, false);
        compare(hint.maximumLineCount, 2);
        compare(hint.color, Theme.secondary);
        compare(hint.mapToItem(view, 0, 0).x, playButton().mapToItem(view, playButton().width, 0).x + 12);
    }

    function test_the_times_are_the_models() {
        init_view(states.playing);
        compare(heard().slice(-4), ["StaticText 1:23", "Button Back 15 seconds", "Button Forward 15 seconds",
            "StaticText 4:07"]);
    }

    function test_the_times_keep_their_frames() {
        init_view(states.loaded);
        const back = find(view, { text: "Back 15 seconds" });
        const forward = find(view, { text: "Forward 15 seconds" });
        const box = find(view, { padding: 12 });
        const x = back.mapToItem(box, 0, 0).x;
        compare(forward.x - back.x - back.width, 10);
        for (const seconds of [0, 8, 11, 59, 100, 600, 6000]) {
            model.show({ currentTime: seconds });
            compare(back.mapToItem(box, 0, 0).x, x);
        }
        const times = all(view, { font: Theme.caption, color: Theme.secondary }).filter(item => item.digitWidth > 0);
        compare(times.map(time => time.parent.width), [54, 54]);
        compare(times[0].mapToItem(box, 0, 0).x, 12);
        compare(times[1].mapToItem(box, times[1].width, 0).x, box.width - 12);
    }
}
