// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtTest
import Tonvale.Views

ViewTestCase {
    id: root
    name: "KeyPicker"
    width: 840
    height: 680

    Component {
        id: component
        KeyPicker {
            id: picker
            x: 100
            y: 200
            width: 173
            label: "New key"
            keys: root.model.allKeys
            selection: root.model.targetKey
            onChosen: id => root.model.targetKey = id
        }
    }

    // What else there is in a window, and must not be hit by chance.
    MouseArea {
        id: elsewhere
        width: 90
        height: 90
    }
    SignalSpy {
        id: pressedElsewhere
        target: elsewhere
        signalName: "pressed"
    }

    property KeyPicker view
    readonly property Item button: view ? find(view, { textRole: "name" }) : null
    SignalSpy {
        id: chosen
        target: root.view
        signalName: "chosen"
    }

    function init_view() {
        view = createTemporaryObject(component, root);
        waitForRendering(view);
        chosen.clear();
        pressedElsewhere.clear();
    }

    /// A list that has no room below opens with other entries over the button.
    function init_low_view() {
        init_view();
        model.show({ targetKey: "cMajor" });
        view.y = 600;
        waitForRendering(view);
    }

    function open() {
        mouseClick(button);
        tryCompare(button.popup, "opened", true);
        waitForRendering(list());
    }

    function type(text) {
        for (const letter of text)
            keyClick(letter);
    }

    function list() {
        return button.popup.contentItem;
    }

    function test_the_list_offers_all_keys_in_order() {
        init_view();
        open();
        const names = heard().filter(text => text.startsWith("ListItem ")).map(text => text.slice(9));
        compare(names, model.allKeys.map(key => key.name));
        compare(names.length, 24);
        compare(names[0], "C major");
        compare(names[13], "C# / Db minor");
    }

    function test_the_list_opens_at_the_chosen_key() {
        init_view();
        model.show({ targetKey: "aMinor" });
        open();
        compare(button.highlightedIndex, 21);
        const entry = list().itemAtIndex(21);
        const place = entry.mapToItem(list(), 0, 0);
        verify(place.y >= 0 && place.y + entry.height <= list().height, "at " + place.y);
        compare(entry.isChosen, true);
    }

    function test_the_list_stays_in_a_low_window_and_scrolls() {
        init_view();
        model.show({ targetKey: "bMinor" });
        view.y = 640;
        open();
        const top = list().mapToItem(root, 0, 0).y;
        verify(top >= 6 && top + list().height <= 680 - 6, "from " + top);
        root.Window.window.height = 400;
        tryVerify(() => list().height <= 400 - 12 && list().mapToItem(root, 0, 0).y >= 6);
        list().positionViewAtBeginning();
        verify(list().contentHeight > list().height);
        root.Window.window.height = 680;
    }

    function test_a_click_chooses_at_once() {
        init_view();
        open();
        mouseClick(list().itemAtIndex(3));
        compare(model.targetKey, "eFlatMajor");
        compare(chosen.count, 1);
        tryCompare(button.popup, "visible", false);
        compare(button.displayText, "D# / Eb major");
    }

    function test_a_double_click_opens_the_list_and_chooses_nothing() {
        init_low_view();
        mouseDoubleClickSequence(button);
        tryCompare(button.popup, "opened", true);
        waitForRendering(list());
        compare(chosen.count, 0);
        compare(button.highlightedIndex, 0);
        mouseClick(list().itemAtIndex(3));
        compare(model.targetKey, "eFlatMajor");
    }

    function test_a_held_press_chooses_where_it_is_let_go() {
        init_view();
        mousePress(button);
        tryCompare(button.popup, "opened", true);
        waitForRendering(list());
        mouseMove(list().itemAtIndex(5));
        compare(button.highlightedIndex, 5);
        mouseMove(list().itemAtIndex(4));
        compare(button.highlightedIndex, 4);
        compare(chosen.count, 0);
        mouseRelease(list().itemAtIndex(4));
        compare(model.targetKey, "eMajor");
        compare(chosen.count, 1);
        tryCompare(button.popup, "visible", false);
    }

    function test_a_held_press_let_go_beside_the_list_chooses_nothing() {
        init_view();
        mousePress(button);
        tryCompare(button.popup, "opened", true);
        mouseMove(root, 600, 300);
        mouseRelease(root, 600, 300);
        tryCompare(button.popup, "visible", false);
        compare(chosen.count, 0);
    }

    function test_a_resting_pointer_highlights_nothing() {
        init_low_view();
        mouseMove(button);
        button.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Space);
        tryCompare(button.popup, "opened", true);
        waitForRendering(list());
        mouseMove(button, button.width / 2 + 1, button.height / 2); // as the window does for what appears under it
        compare(button.highlightedIndex, 0);
        mouseMove(list().itemAtIndex(7), 20, 12);
        mouseMove(list().itemAtIndex(7), 24, 12);
        compare(button.highlightedIndex, 7);
        compare(chosen.count, 0);
    }

    function test_a_press_elsewhere_only_closes_the_list() {
        init_view();
        open();
        mouseClick(elsewhere);
        tryCompare(button.popup, "visible", false);
        compare(pressedElsewhere.count, 0);
        compare(chosen.count, 0);
        mouseClick(elsewhere);
        compare(pressedElsewhere.count, 1);
    }

    function test_the_same_key_can_be_chosen_again() {
        init_view();
        open();
        mouseMove(list().itemAtIndex(10), 5, 12);
        mouseClick(list().itemAtIndex(10), 5, 12);
        compare(chosen.count, 1);
        compare(chosen.signalArguments[0][0], "bFlatMajor");
    }

    function test_keys_of_the_keyboard_choose_in_the_open_list() {
        init_view();
        button.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Space);
        tryCompare(button.popup, "opened", true);
        keyClick(Qt.Key_Down);
        compare(button.highlightedIndex, 11);
        keyClick(Qt.Key_Up);
        keyClick(Qt.Key_Up);
        compare(button.highlightedIndex, 9);
        keyClick(Qt.Key_Home);
        compare(button.highlightedIndex, 0);
        compare(chosen.count, 0);
        keyClick(Qt.Key_Return);
        compare(model.targetKey, "cMajor");
        compare(chosen.count, 1);
    }

    function test_a_screen_reader_chooses() {
        init_view();
        const window = root.Window.window;
        verify(reader.act(window, "ComboBox", "New key", "Press"));
        tryCompare(button.popup, "opened", true);
        verify(reader.act(window, "ListItem", "F# / Gb major", "Press"));
        compare(model.targetKey, "fSharpMajor");
        compare(chosen.count, 1);
        tryCompare(button.popup, "visible", false);
        reader.act(window, "ComboBox", "New key", "Press");
        reader.act(window, "ComboBox", "New key", "Press");
        tryCompare(button.popup, "visible", false);
    }

    function test_escape_leaves_the_key_as_it_is() {
        init_view();
        open();
        keyClick(Qt.Key_Down);
        keyClick(Qt.Key_Escape);
        tryCompare(button.popup, "visible", false);
        compare(chosen.count, 0);
        compare(model.targetKey, "bFlatMajor");
    }

    function test_arrows_step_in_the_closed_button() {
        init_view();
        button.forceActiveFocus(Qt.TabFocusReason);
        keyClick(Qt.Key_Down);
        compare(model.targetKey, "bMajor");
        keyClick(Qt.Key_Up);
        keyClick(Qt.Key_Up);
        compare(model.targetKey, "aMajor");
        model.show({ targetKey: "cMinor" });
        compare(button.displayText, "C minor");
    }

    function test_the_wheel_changes_nothing() {
        init_view();
        mouseWheel(button, 10, 10, 0, -120);
        compare(chosen.count, 0);
    }

    function test_typing_finds_the_key_data() {
        return [
            { tag: "eb", key: "eFlatMajor" },
            { tag: "f#", key: "fSharpMajor" },
            { tag: "e", key: "eMajor" },
            { tag: "b", key: "bMajor" },
            { tag: "bb", key: "bFlatMajor" },
            { tag: "Ab", key: "aFlatMajor" },
            { tag: "eb m", key: "eFlatMajor" },
            { tag: "eb mi", key: "eFlatMinor" },
            { tag: "c mi", key: "cMinor" },
            { tag: "db minor", key: "cSharpMinor" },
            { tag: "a#", key: "bFlatMajor" },
        ];
    }

    function test_typing_finds_the_key(data) {
        init_view();
        model.show({ targetKey: "dMinor" });
        button.forceActiveFocus(Qt.TabFocusReason);
        type(data.tag);
        compare(model.targetKey, data.key);
        compare(button.popup.visible, false);
    }

    function test_typing_finds_the_key_in_the_open_list() {
        init_view();
        open();
        type("eb mi");
        compare(button.highlightedIndex, 15);
        compare(chosen.count, 0);
        keyClick(Qt.Key_Return);
        compare(model.targetKey, "eFlatMinor");
    }

    function test_typing_what_is_no_key_changes_nothing() {
        init_view();
        button.forceActiveFocus(Qt.TabFocusReason);
        type("xyz");
        compare(chosen.count, 0);
    }

    function test_the_space_bar_opens_the_list_where_no_key_goes_on_with_a_blank_data() {
        return [{ tag: "x" }, { tag: "eb major" }, { tag: "e " }, { tag: "f# m" }];
    }

    function test_the_space_bar_opens_the_list_where_no_key_goes_on_with_a_blank(data) {
        init_view();
        button.forceActiveFocus(Qt.TabFocusReason);
        type(data.tag);
        compare(button.popup.visible, false);
        keyClick(Qt.Key_Space);
        tryCompare(button.popup, "opened", true);
        compare(button.typed, "");
    }

    function test_typing_starts_anew_after_a_while() {
        init_view();
        button.forceActiveFocus(Qt.TabFocusReason);
        type("e");
        tryCompare(button, "typed", "", 2000);
        type("b");
        compare(model.targetKey, "bMajor");
    }
}
