// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Views

ViewTestCase {
    id: root
    name: "SongDetailsDetectionView"
    width: 400
    height: 200

    Component {
        id: component
        SongDetailsDetectionView {
            width: 344
            model: root.model
        }
    }

    property SongDetailsDetectionView view

    function init_view(values) {
        view = createTemporaryObject(component, root);
        model.show(values);
        waitForRendering(view);
    }

    function button() {
        return find(view, { symbol: "waveform" });
    }

    function test_without_results_there_is_only_the_button() {
        init_view({});
        compare(view.implicitHeight, button().height);
        compare(heard(), ["Button Auto Detect Song Details"]);
    }

    function test_the_button_spans_the_panel() {
        init_view({});
        compare(placeIn(view, button()), "0 0 344 24");
        compare(button().isProminent, false);
    }

    function test_the_button_follows_the_model_data() {
        return [
            { tag: "impossible", can: false, is: false, text: "Auto Detect Song Details" },
            { tag: "possible", can: true, is: false, text: "Auto Detect Song Details" },
            { tag: "running", can: false, is: true, text: "Detecting..." },
        ];
    }

    function test_the_button_follows_the_model(data) {
        init_view({ canAutoDetectSongDetails: data.can, isDetectingSongDetails: data.is });
        compare(button().text, data.text);
        compare(button().enabled, data.can);
        mouseClick(button());
        compare(calls(), data.can ? "autoDetectSongDetails" : "");
    }

    function test_the_message_comes_before_the_lines() {
        init_view({ songDetailsMessage: "A message", songDetailLines: ["Key  : C major", "Tempo  : Unavailable"] });
        compare(heard(), ["Button Auto Detect Song Details", "StaticText A message", "StaticText Key  : C major",
            "StaticText Tempo  : Unavailable"]);
        const message = find(view, { text: "A message" });
        const first = find(view, { text: "Key  : C major" });
        const second = find(view, { text: "Tempo  : Unavailable" });
        compare(message.y, button().height + 6);
        compare(first.mapToItem(view, 0, 0).y, message.y + message.height + 6);
        compare(second.y, first.y + first.height + 2);
        compare([message.font.pixelSize, first.font.pixelSize], [10, 12]);
        compare([message.color, first.color], [Theme.secondary, Theme.secondary]);
        compare(first.textFormat, Text.PlainText);
        compare(message.textFormat, Text.PlainText);
    }

    function test_results_go_away_without_a_trace() {
        init_view(states.detected);
        verify(view.implicitHeight > button().height);
        model.show({ songDetailLines: [], songDetailsMessage: "" });
        waitForRendering(view);
        compare(view.implicitHeight, button().height);
    }

    function test_a_line_that_is_ended_takes_no_further_line() {
        init_view({ songDetailsMessage: "Traceback:\n  no numpy\n \n" });
        const message = find(view, { text: "Traceback:\n  no numpy" });
        compare([message.lineCount, message.truncated], [2, false]);
        compare(heard()[1], "StaticText " + model.songDetailsMessage);
    }

    function test_long_results_are_cut() {
        init_view({ songDetailsMessage: "word ".repeat(60), songDetailLines: ["word ".repeat(30)] });
        const message = find(view, { text: model.songDetailsMessage.trim() });
        const line = find(view, { text: model.songDetailLines[0] });
        compare([message.lineCount, message.truncated], [2, true]);
        compare([line.lineCount, line.truncated], [1, true]);
    }
}
