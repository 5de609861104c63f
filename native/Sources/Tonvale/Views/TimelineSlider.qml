// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

import QtQuick
import QtQuick.Templates as T

/// Shows and sets where in the song the preview stands.
T.Slider {
    id: root

    required property QtObject model

    /// Seconds that an arrow key and a page key move.
    readonly property real step: Math.min(5, to / 20)
    readonly property real page: Math.min(15, to / 5)
    // What a screen reader is told of the range.
    readonly property real minimumValue: from
    readonly property real maximumValue: to

    /// The key that moves the position; one hold is one editing, however often the key repeats.
    property int heldKey: 0

    function targetOf(key: int): real {
        switch (key) {
        case Qt.Key_Left:
        case Qt.Key_Down:
            return value - step;
        case Qt.Key_Right:
        case Qt.Key_Up:
            return value + step;
        case Qt.Key_PageDown:
            return value - page;
        case Qt.Key_PageUp:
            return value + page;
        case Qt.Key_Home:
            return from;
        case Qt.Key_End:
            return to;
        }
        return NaN;
    }

    function releaseKey(): void {
        if (heldKey === 0)
            return;
        heldKey = 0;
        model.timelineEditingChanged(false);
    }

    function moveTo(seconds: real): void {
        model.setTimelinePreview(Math.max(from, Math.min(to, seconds)));
    }

    /// A whole editing at once, for who has no key or mouse button to hold.
    function editTo(seconds: real): void {
        model.timelineEditingChanged(true);
        moveTo(seconds);
        model.timelineEditingChanged(false);
    }

    from: 0
    to: model.duration > 1 ? model.duration : 1
    value: model.currentTime
    enabled: model.hasAudio

    implicitWidth: 120
    implicitHeight: 20
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    wheelEnabled: false

    Accessible.role: Accessible.Slider
    Accessible.name: "Position"
    Accessible.onIncreaseAction: if (enabled) editTo(value + step)
    Accessible.onDecreaseAction: if (enabled) editTo(value - step)

    // A screen reader sets the value without a word to the model.
    onValueChanged: {
        if (!pressed && value !== Math.max(from, Math.min(to, model.currentTime)))
            editTo(value);
    }
    onMoved: model.setTimelinePreview(value)
    onPressedChanged: model.timelineEditingChanged(pressed)
    onActiveFocusChanged: if (!activeFocus) releaseKey()

    Keys.onPressed: event => {
        const target = targetOf(event.key);
        if (isNaN(target))
            return;
        event.accepted = true;
        if (heldKey === 0) {
            heldKey = event.key;
            model.timelineEditingChanged(true);
        }
        moveTo(target);
    }
    Keys.onReleased: event => {
        event.accepted = !isNaN(targetOf(event.key));
        if (event.key === heldKey && !event.isAutoRepeat)
            releaseKey();
    }

    background: Item {
        implicitHeight: 20

        Rectangle {
            id: groove
            y: 8
            width: parent.width
            height: 4
            radius: 2
            color: Theme.track
            opacity: root.enabled ? 1 : 0.6
        }

        Rectangle {
            y: 8
            width: 9 + Math.round(root.visualPosition * (root.width - 18))
            height: 4
            radius: 2
            visible: root.enabled
            color: Theme.accent
        }
    }

    handle: Item {
        x: Math.round(root.visualPosition * (root.width - width))
        y: 1
        implicitWidth: 18
        implicitHeight: 18

        CastShadow {
            visible: root.enabled
            fall: 1
            radius: 9
            blurRadius: 4
            color: Theme.shadow(0.22)
        }

        Rectangle {
            anchors.fill: parent
            radius: 9
            color: root.enabled ? Theme.knob : Theme.disabledKnob
            border.width: 1
            border.color: root.enabled ? Theme.knobEdge : "transparent"

            Rectangle {
                anchors.fill: parent
                radius: 9
                visible: root.pressed || (root.hovered && root.enabled)
                color: root.pressed ? Theme.pressed : Theme.hovered
            }
        }

        FocusRing {
            control: root
            around: 9
        }
    }
}
