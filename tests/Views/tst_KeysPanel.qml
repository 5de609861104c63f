// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Templates as T
import Tonvale.Views

ViewTestCase {
    id: root
    name: "KeysPanel"
    width: 400
    height: 300

    Component {
        id: component
        KeysPanel {
            width: 396
            height: implicitHeight
            model: root.model
        }
    }

    property KeysPanel view

    function init_view(values) {
        view = createTemporaryObject(component, root);
        model.show(values);
        waitForRendering(view);
    }

    function test_the_pill_tells_the_shift_data() {
        return [
            { tag: "none", semitones: 0, signed: "0", pill: "No shift", cents: "Pitch shift 0 cents" },
            { tag: "one up", semitones: 1, signed: "+1", pill: "+1 semitones", cents: "Pitch shift 100 cents" },
            { tag: "three up", semitones: 3, signed: "+3", pill: "+3 semitones", cents: "Pitch shift 300 cents" },
            { tag: "five down", semitones: -5, signed: "-5", pill: "-5 semitones", cents: "Pitch shift -500 cents" },
        ];
    }

    function test_the_pill_tells_the_shift(data) {
        init_view({ semitones: data.semitones, signedSemitoneText: data.signed, intervalDescription: "An interval." });
        compare(find(view, { text: data.pill, isReady: true }) !== null, true);
        const texts = heard();
        compare(texts.slice(0, 2), ["StaticText Keys", "StaticText " + data.pill]);
        compare(texts.slice(-3), ["StaticText An interval.", "StaticText " + data.cents, "StaticText " + data.signed]);
    }

    function test_the_interval_box_has_its_looks() {
        init_view(states.shifted);
        const box = find(view, { padding: 16 });
        const figure = find(view, { text: "-2" });
        compare(box.color, Theme.textBackground);
        compare(box.width, 360);
        compare([figure.font.pixelSize, figure.font.family], [58, "Nunito Black"]);
        compare(String(figure.color), String(Theme.faded(Theme.red, 0.78)));
        compare(figure.mapToItem(box, figure.width, 0).x, 360 - 16);
        const description = find(view, { text: "Down 2 semitones." });
        const cents = find(view, { text: "Pitch shift -200 cents" });
        compare(description.mapToItem(box, 0, 0).x, 16);
        compare(cents.y, description.y + description.height + 4);
        compare([description.color, cents.color], [Theme.text, Theme.secondary]);
        compare([description.font.pixelSize, cents.font.pixelSize], [13, 13]);
    }

    function test_the_pickers_stand_beside_each_other() {
        init_view({});
        const pickers = all(view, { textRole: "name" });
        compare(pickers.map(picker => picker.width), [173, 173]);
        compare(pickers[1].mapToItem(view, 0, 0).x - pickers[0].mapToItem(view, 173, 0).x, 14);
    }

    function test_the_longest_key_fits_into_both_pickers() {
        init_view(states.fullestMessage);
        model.show({ sourceKey: "fSharpMinor", targetKey: "bFlatMinor" });
        const pickers = all(view, { textRole: "name" });
        compare(pickers.map(picker => picker.displayText), ["F# / Gb minor", "A# / Bb minor"]);
        compare(pickers.map(picker => picker.contentItem.truncated), [false, false]);
    }

    function test_the_pickers_are_never_disabled() {
        init_view({});
        for (const state in states) {
            model.show(states[state]);
            compare(all(view, { textRole: "name" }).map(picker => picker.enabled), [true, true], state);
        }
    }

    function test_each_picker_writes_its_own_key() {
        init_view({});
        const pickers = all(view, { textRole: "name" });
        pickers[0].activated(4);
        compare([model.sourceKey, model.targetKey], ["eMajor", "bFlatMajor"]);
        pickers[1].activated(21);
        compare([model.sourceKey, model.targetKey], ["eMajor", "aMinor"]);
    }

    function test_the_pickers_follow_the_model() {
        init_view({});
        const pickers = all(view, { textRole: "name" });
        pickers[0].activated(4);
        compare(pickers.map(picker => picker.displayText), ["E major", "A# / Bb major"]);
        model.show({ sourceKey: "cSharpMinor" });
        compare(pickers.map(picker => picker.displayText), ["C# / Db minor", "A# / Bb major"]);
    }

    function test_a_screen_reader_hears_label_and_key_of_each_picker() {
        init_view(states.shifted);
        const boxes = reader.entries(root.Window.window).filter(entry => entry.role === "ComboBox");
        compare(boxes.map(entry => entry.name), ["Recorded key", "New key"]);
        compare(boxes.map(entry => entry.description), ["C# / Db major", "B major"]);
    }
}
