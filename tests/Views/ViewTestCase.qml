// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtTest
import Tonvale.ViewTests
import Tonvale.Views
import "ModelStates.js" as ModelStates

/// A test case with a fresh model and the same colour scheme for every test, in which a warning is a
/// failure.
TestCase {
    id: root

    property ScriptedModel model
    readonly property Component modelComponent: ScriptedModel {}
    readonly property AccessibleReader reader: AccessibleReader {}
    readonly property DragSimulator drag: DragSimulator {}
    readonly property KeySimulator keys: KeySimulator {}
    readonly property var states: ModelStates.states
    property bool wasDark

    when: windowShown
    visible: true

    function init() {
        failOnWarning(/./);
        wasDark = Theme.isDark;
        model = modelComponent.createObject(root);  // outlives the views of its test
    }

    function cleanup() {
        Theme.isDark = wasDark;
    }

    /// The first thing below `item` with these values, for example { text: "Clear" }.
    function find(item, values) {
        return all(item, values)[0] ?? null;
    }

    /// Everything below `item` with these values, in drawing order.
    function all(item, values) {
        const found = [];
        for (const child of Array.from(item.children)) {
            if (Object.keys(values).every(name => child[name] === values[name]))
                found.push(child);
            found.push(...all(child, values));
        }
        return found;
    }

    /// What a screen reader hears, as "role name".
    function heard() {
        return reader.entries(root.Window.window).map(entry => entry.role + " " + entry.name);
    }

    /// What is drawn where `item` lies. Darkness is how much black there is over the white ground of
    /// the tests, 0 to 255.
    function pictureOf(item) {
        const picture = grabImage(root);
        const place = item.mapToItem(root, 0, 0);
        return {
            pixel: (x, y) => picture.pixel(place.x + x, place.y + y),
            darkness: (x, y) => 255 - picture.red(place.x + x, place.y + y),
        };
    }

    function calls() {
        return model.calls.join(", ");
    }

    /// Where `item` lies in the view it belongs to.
    function placeIn(view, item) {
        const place = view.mapFromItem(item, 0, 0, item.width, item.height);
        return [place.x, place.y, place.width, place.height].join(" ");
    }
}
