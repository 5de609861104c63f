#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""A desktop's power manager that keeps the computer awake for whoever asks, or refuses everybody.

Writes a line for each event: "refused", "awake for NAME: REASON", "released", and "left" when somebody goes whom it
still keeps awake.
Usage: power_manager.py grant|refuse
"""

import sys

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

NAME = "org.freedesktop.PowerManagement"
PATH = "/org/freedesktop/PowerManagement/Inhibit"
INTERFACE = f"""<node><interface name="{NAME}.Inhibit">
<method name="Inhibit"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="u" direction="out"/></method>
<method name="UnInhibit"><arg type="u" direction="in"/></method></interface></node>"""


def say(line: str) -> None:
    print(line, flush=True)


class PowerManager:
    def __init__(self, grants: bool) -> None:
        self.grants = grants
        self.cookie = 0
        self.kept: dict[int, int] = {}  # whose departure is watched for, by cookie
        bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        bus.register_object(PATH, Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0], self.on_call, None, None)
        Gio.bus_own_name_on_connection(bus, NAME, Gio.BusNameOwnerFlags.NONE, lambda *_: say("ready"), None)

    def on_call(self, bus: Gio.DBusConnection, sender: str, _path: str, _interface: str, method: str,
                arguments: GLib.Variant, invocation: Gio.DBusMethodInvocation) -> None:
        if method == "UnInhibit":
            Gio.bus_unwatch_name(self.kept.pop(arguments.unpack()[0]))
            invocation.return_value(None)
            say("released")
        elif self.grants:
            self.cookie += 1
            self.kept[self.cookie] = Gio.bus_watch_name_on_connection(
                bus, sender, Gio.BusNameWatcherFlags.NONE, None, lambda *_: say("left"))
            invocation.return_value(GLib.Variant("(u)", (self.cookie,)))
            say("awake for {}: {}".format(*arguments.unpack()))
        else:
            invocation.return_dbus_error("org.freedesktop.DBus.Error.AccessDenied", "No.")
            say("refused")


if __name__ == "__main__":
    PowerManager(sys.argv[1] == "grant")
    GLib.MainLoop().run()
