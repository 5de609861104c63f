#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""A small window from which things are dragged, as from a file manager or a web browser.

Reads what to offer as lines of JSON, {"type": "text/uri-list", "data": "file:///a.wav\\r\\n"}, and writes a line when
it offers it, one whenever the window under the mouse has another mind about it, and one when the drag has ended.
Usage: drag_source.py X Y
"""

import json
import sys

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, GLib, Gtk  # noqa: E402

SIZE = 60


def say(**what: object) -> None:
    print(json.dumps(what), flush=True)


class DragSource(Gtk.Window):
    def __init__(self, x: int, y: int) -> None:
        super().__init__(type=Gtk.WindowType.POPUP)  # stays where it is put
        self.offer: dict[str, str] = {}
        self.refused = False
        self.action = "none"
        self.set_default_size(SIZE, SIZE)
        self.move(x, y)
        self.connect("drag-begin", self.on_drag_begin)
        self.connect("drag-data-get", self.on_drag_data_get)
        self.connect("drag-failed", self.on_drag_failed)
        self.connect("drag-end", self.on_drag_end)
        self.connect("map-event", lambda *_: say(shown=True))
        self.show_all()

    def set_offer(self, offer: dict[str, str]) -> None:
        self.offer, self.refused = offer, False
        target = Gtk.TargetEntry.new(offer["type"], 0, 0)
        self.drag_source_set(Gdk.ModifierType.BUTTON1_MASK, [target], Gdk.DragAction.COPY | Gdk.DragAction.MOVE)
        say(offered=True)

    def on_drag_begin(self, _widget: Gtk.Widget, context: Gdk.DragContext) -> None:
        self.action = "none"
        self.watch = GLib.timeout_add(10, self.tell_action, context)

    def tell_action(self, context: Gdk.DragContext) -> bool:
        action = context.get_selected_action().first_value_nick or "none"
        if action != self.action:
            self.action = action
            say(action=action)
        return True

    def on_drag_data_get(self, _widget: Gtk.Widget, _context: Gdk.DragContext, data: Gtk.SelectionData,
                         *_: object) -> None:
        data.set(data.get_target(), 8, self.offer["data"].encode())

    def on_drag_failed(self, _widget: Gtk.Widget, _context: Gdk.DragContext, _reason: Gtk.DragResult) -> bool:
        self.refused = True
        return True  # no picture that flies back

    def on_drag_end(self, _widget: Gtk.Widget, context: Gdk.DragContext) -> None:
        self.tell_action(context)
        GLib.source_remove(self.watch)
        say(accepted=not self.refused)


def main() -> None:
    source = DragSource(int(sys.argv[1]), int(sys.argv[2]))

    def on_line(_channel: GLib.IOChannel, _condition: GLib.IOCondition) -> bool:
        if line := sys.stdin.readline():
            source.set_offer(json.loads(line))
            return True
        Gtk.main_quit()
        return False

    GLib.io_add_watch(GLib.IOChannel.unix_new(0), GLib.PRIORITY_DEFAULT, GLib.IOCondition.IN | GLib.IOCondition.HUP,
                      on_line)
    Gtk.main()


if __name__ == "__main__":
    main()
