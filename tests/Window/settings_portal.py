#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""A desktop's settings portal that knows one setting, the colour scheme.

Reads its values as lines, "1" for dark and "2" for light, and writes a line when the bus has the news.
Usage: settings_portal.py FIRST-VALUE
"""

import sys

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

NAME = "org.freedesktop.portal.Desktop"
PATH = "/org/freedesktop/portal/desktop"
SETTINGS = "org.freedesktop.portal.Settings"
APPEARANCE = "org.freedesktop.appearance"
INTERFACE = f"""<node><interface name="{SETTINGS}">
<method name="Read"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/></method>
<method name="ReadOne"><arg type="s" direction="in"/><arg type="s" direction="in"/>
<arg type="v" direction="out"/></method>
<method name="ReadAll"><arg type="as" direction="in"/><arg type="a{{sa{{sv}}}}" direction="out"/></method>
<signal name="SettingChanged"><arg type="s"/><arg type="s"/><arg type="v"/></signal>
<property name="version" type="u" access="read"/></interface></node>"""


class Portal:
    def __init__(self, scheme: int) -> None:
        self.scheme = GLib.Variant("u", scheme)
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
        interface = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
        self.bus.register_object(PATH, interface, self.on_call, lambda *_: GLib.Variant("u", 2), None)
        Gio.bus_own_name_on_connection(self.bus, NAME, Gio.BusNameOwnerFlags.NONE,
                                       lambda *_: print("ready", flush=True), None)

    def on_call(self, _bus: object, _sender: str, _path: str, _interface: str, method: str, arguments: GLib.Variant,
                invocation: Gio.DBusMethodInvocation) -> None:
        if method == "ReadAll":
            answer = GLib.Variant("(a{sa{sv}})", ({APPEARANCE: {"color-scheme": self.scheme}},))
        elif arguments.unpack() != (APPEARANCE, "color-scheme"):
            invocation.return_dbus_error("org.freedesktop.portal.Error.NotFound", "Requested setting not found")
            return
        elif method == "Read":  # answers with a variant in a variant
            answer = GLib.Variant("(v)", (GLib.Variant("v", self.scheme),))
        else:
            answer = GLib.Variant("(v)", (self.scheme,))
        invocation.return_value(answer)

    def change(self, scheme: int) -> None:
        self.scheme = GLib.Variant("u", scheme)
        self.bus.emit_signal(None, PATH, SETTINGS, "SettingChanged",
                             GLib.Variant("(ssv)", (APPEARANCE, "color-scheme", self.scheme)))
        self.bus.flush_sync(None)
        print("changed", flush=True)


def main() -> None:
    portal = Portal(int(sys.argv[1]))

    def on_line(_channel: GLib.IOChannel, _condition: GLib.IOCondition) -> bool:
        if line := sys.stdin.readline():
            portal.change(int(line))
        return bool(line)

    GLib.io_add_watch(GLib.IOChannel.unix_new(0), GLib.PRIORITY_DEFAULT, GLib.IOCondition.IN | GLib.IOCondition.HUP,
                      on_line)
    GLib.MainLoop().run()


if __name__ == "__main__":
    main()
