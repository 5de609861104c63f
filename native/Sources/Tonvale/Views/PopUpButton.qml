// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Tonvale.Views
import "EntrySearch.js" as EntrySearch

/// A button that shows the chosen entry of a list and opens the list over itself. Typing finds an
/// entry, in the closed button and in the open list.
T.ComboBox {
    id: root

    property string typed
    /// Where the focus stood before the mouse opened the list.
    property Item focusedBefore: null

    implicitWidth: 150
    implicitHeight: 24
    leftPadding: 9
    rightPadding: 22
    font: Theme.control
    hoverEnabled: true
    wheelEnabled: false
    focusPolicy: Qt.TabFocus

    Accessible.role: Accessible.ComboBox
    Accessible.description: displayText
    Accessible.onPressAction: popup.visible ? popup.close() : popup.open()

    function goTo(index: int): void {
        if (index < 0)
            return;
        if (!popup.visible)
            activated(index);
        while (popup.visible && highlightedIndex < index)
            incrementCurrentIndex();
        while (popup.visible && highlightedIndex > index)
            decrementCurrentIndex();
    }

    Keys.onPressed: event => {
        shield.raise();
        const isText = /^[^\x00-\x1f\x7f]$/.test(event.text) && !(event.modifiers & (Qt.ControlModifier | Qt.AltModifier));
        const names = model.map(entry => entry[textRole]);
        // A blank is text where an entry goes on with one, and the space bar everywhere else.
        if (event.text === " " && !EntrySearch.goesOn(names, typed + " "))
            typed = "";
        else if (isText)
            type(names, event);
    }

    function type(names: var, event: var): void {
        event.accepted = true;
        typed += event.text;
        forget.restart();
        const index = EntrySearch.indexOf(names, typed);
        if (index >= 0)
            goTo(index);
    }
    // A blank that was typed must not open the list when its key comes up.
    Keys.onReleased: event => event.accepted = event.key === Qt.Key_Space && typed !== ""

    Timer {
        id: forget
        interval: 1000
        onTriggered: root.typed = ""
    }

    PopUpPress {
        id: mouse
        anchors.fill: parent
        z: 1
        popup: root.popup
        list: list
        onMoved: index => root.goTo(index)
        onLetGo: index => {
            root.popup.close();
            if (index >= 0)
                root.activated(index);
        }
    }

    contentItem: PlainLabel {
        text: root.displayText
        font: root.font
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }

    indicator: SymbolImage {
        x: root.width - width - 7
        y: Math.round((root.height - height) / 2)
        name: "chevron.up.chevron.down"
        fontSize: 10
        color: Theme.secondary
    }

    background: PushButtonGround {
        control: root
        isDown: root.down
    }

    delegate: PopUpEntry {
        required property int index
        required property var modelData

        width: ListView.view.width
        text: modelData[root.textRole]
        isChosen: index === root.currentIndex
        highlighted: index === root.highlightedIndex
    }

    popup: T.Popup {
        // The chosen entry lies over the button, text over text.
        x: -20
        y: -5 - 24 * Math.max(0, root.currentIndex)
        width: root.width + 20
        height: Math.min(list.contentHeight + 10, root.Window.height - 12)
        margins: 6
        padding: 5
        // The press that closes the list does nothing else.
        modal: true
        dim: false

        // The list needs the keys while it is open; afterwards the space bar means what it meant.
        onAboutToShow: {
            shield.raise();
            if (root.activeFocus)
                return;
            root.focusedBefore = root.Window.activeFocusItem;
            root.forceActiveFocus(Qt.PopupFocusReason);
        }
        onClosed: {
            if (root.focusedBefore && root.activeFocus)
                root.focusedBefore.forceActiveFocus(Qt.ShortcutFocusReason);
            root.focusedBefore = null;
        }
        onOpened: list.positionViewAtIndex(root.currentIndex, ListView.Center)

        contentItem: ListView {
            id: list
            clip: true
            model: root.delegateModel
            currentIndex: root.highlightedIndex
            highlightMoveDuration: 0
            cacheBuffer: 10000 // a screen reader hears of the entries that exist
            boundsBehavior: Flickable.StopAtBounds

            Accessible.role: Accessible.List
            Accessible.name: root.Accessible.name

            PopUpShield {
                id: shield
                parent: list
                anchors.fill: parent
                z: 1
                button: mouse
            }
        }

        background: PopUpGround {}
    }
}
