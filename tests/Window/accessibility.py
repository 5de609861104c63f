# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What a screen reader knows of a program, and what it can do with it. Raw messages, so nothing is cached."""

from __future__ import annotations

from collections.abc import Iterator
from dataclasses import dataclass, field
from typing import Any

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402
from screen import Area  # noqa: E402

PREFIX = "org.a11y.atspi."
ROOT = "/org/a11y/atspi/accessible/root"
# Bits of the state set that the tests ask for (atspi-constants.h).
STATES = {1: "active", 4: "checked", 5: "checkable", 8: "enabled", 9: "expandable", 10: "expanded", 11: "focusable",
          12: "focused", 16: "modal", 20: "pressed", 23: "selected", 24: "sensitive", 25: "showing", 30: "visible"}
CALL_MILLISECONDS = 10000


class Gone(Exception):
    """The object or its program is no longer there."""


def connect(address: str) -> Gio.DBusConnection:
    flags = Gio.DBusConnectionFlags
    return Gio.DBusConnection.new_for_address_sync(
        address, flags.AUTHENTICATION_CLIENT | flags.MESSAGE_BUS_CONNECTION, None, None)


def ask(bus: Gio.DBusConnection, owner: str, path: str, interface: str, method: str,
        arguments: GLib.Variant | None = None) -> Any:
    """Calls a method and unpacks its answer. @error Gone"""
    try:
        answer = bus.call_sync(owner, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE,
                               CALL_MILLISECONDS, None)
    except GLib.Error as error:
        raise Gone(f"{method} of {path}: {error.message}") from error
    return answer.unpack()


def accessibility_bus(session_address: str) -> Gio.DBusConnection:
    """The bus of the screen readers; asking for it starts it."""
    return connect(ask(connect(session_address), "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")[0])


@dataclass(frozen=True)
class Element:
    """One accessible thing as it was when it was read."""

    bus: Gio.DBusConnection = field(repr=False, compare=False)
    owner: str = field(repr=False)
    path: str
    role: str
    name: str
    states: frozenset[str]
    children: tuple[Element, ...] = field(repr=False, compare=False)

    def ask(self, interface: str, method: str, arguments: GLib.Variant | None = None) -> Any:
        return ask(self.bus, self.owner, self.path, PREFIX + interface, method, arguments)

    def read_property(self, interface: str, name: str) -> Any:
        return ask(self.bus, self.owner, self.path, "org.freedesktop.DBus.Properties", "Get",
                   GLib.Variant("(ss)", (PREFIX + interface, name)))[0]

    def act(self, action: str) -> None:
        """Does one of the things that can be done with it, "Press" or "Increase"."""
        names = [name for name, *_ in self.ask("Action", "GetActions")[0]]
        if action not in names or not self.ask("Action", "DoAction", GLib.Variant("(i)", (names.index(action),)))[0]:
            raise AssertionError(f"{self.role} {self.name!r} cannot do {action!r}, only {names}")

    def press(self) -> None:
        self.act("Press")

    def focus(self) -> None:
        self.ask("Component", "GrabFocus")

    @property
    def enabled(self) -> bool:
        return "enabled" in self.states and "sensitive" in self.states

    @property
    def description(self) -> str:
        return self.read_property("Accessible", "Description")

    @property
    def value(self) -> float:
        return self.read_property("Value", "CurrentValue")

    @property
    def range(self) -> tuple[float, float]:
        return self.read_property("Value", "MinimumValue"), self.read_property("Value", "MaximumValue")

    @property
    def text(self) -> str:
        """The content of a text field."""
        return self.ask("Text", "GetText", GLib.Variant("(ii)", (0, -1)))[0]

    @property
    def area(self) -> Area:
        """Where it is on the screen."""
        return Area(*self.ask("Component", "GetExtents", GLib.Variant("(u)", (0,)))[0])

    def walk(self) -> Iterator[Element]:
        """Itself and everything in it, in the order in which it is read out."""
        yield self
        for child in self.children:
            yield from child.walk()


def read(bus: Gio.DBusConnection, owner: str, path: str, hidden: bool = False) -> Element:
    """Reads a thing and all that shows in it, or all that there is. @error Gone when it vanishes meanwhile"""

    def get(method: str) -> Any:
        return ask(bus, owner, path, PREFIX + "Accessible", method)[0]

    low, high = get("GetState")
    states = frozenset(name for bit, name in STATES.items() if (low | high << 32) >> bit & 1)
    name = ask(bus, owner, path, "org.freedesktop.DBus.Properties", "Get",
               GLib.Variant("(ss)", (PREFIX + "Accessible", "Name")))[0]
    children = (read(bus, owner, child, hidden) for owner, child in get("GetChildren"))
    return Element(bus, owner, path, get("GetRoleName"), name, states,
                   tuple(child for child in children if hidden or "showing" in child.states))


def program(bus: Gio.DBusConnection, process: int) -> str | None:
    """The bus name of a running program; none before it has registered itself."""
    try:
        programs = ask(bus, PREFIX + "Registry", ROOT, PREFIX + "Accessible", "GetChildren")[0]
        for owner, _ in programs:
            if ask(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                   "GetConnectionUnixProcessID", GLib.Variant("(s)", (owner,)))[0] == process:
                return owner
    except Gone:
        pass  # a program ended while it was asked
    return None
