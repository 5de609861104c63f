// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import Tonvale.Views
import "ModelStates.js" as ModelStates

/// The window's content in one state after the other, to be looked at.
Rectangle {
    id: root

    readonly property var names: Object.keys(ModelStates.states).concat(["hovering", "list", "focus"])

    property bool isDark: false
    /// What the model shows at first of all that any state changes.
    property var pristine

    function show(name: string): void {
        model.show(pristine);
        model.show(ModelStates.states[name] ?? ModelStates.states["shifted"]);
    }

    width: 840
    height: 680
    color: Theme.windowBackground

    Component.onCompleted: {
        const values = {};
        for (const state of Object.values(ModelStates.states)) {
            for (const name in state)
                values[name] = model[name];
        }
        pristine = values;
    }

    Binding {
        target: Theme
        property: "isDark"
        value: root.isDark
    }

    ScriptedModel {
        id: model
    }

    ContentView {
        anchors.fill: parent
        model: model
    }
}
