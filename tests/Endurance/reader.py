# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads the whole window as a screen reader does, with all questions of one depth asked at once."""

from __future__ import annotations

from dataclasses import dataclass
from functools import cached_property
from typing import Any

from accessibility import PREFIX, ROOT, STATES, Element, Gone
from gi.repository import Gio, GLib

ACCESSIBLE, VALUE = PREFIX + "Accessible", PREFIX + "Value"
PROPERTIES = "org.freedesktop.DBus.Properties"
# The files of a panel are Qt's own, many, and not to be asked for while they go.
LEAVES = frozenset({"label", "list item", "push button", "slider", "splitter"})
NOTHING = "/org/a11y/atspi/null"  # among the children of Qt's own widgets
PANELS = ("dialog", "alert message")
ANSWER_MILLISECONDS = 20000
Question = tuple[str, str, str, GLib.Variant | None]  # path, interface, method, arguments


@dataclass(frozen=True)
class View:
    """All that showed at one moment."""

    windows: tuple[Element, ...]
    descriptions: dict[str, str]  # of the pickers, by name
    position: tuple[float, float] | None  # of the timeline, and the end of its range

    @cached_property
    def main(self) -> list[Element]:
        return self._all_in(next((window for window in self.windows
                                  if (window.role, window.name) == ("frame", "Tonvale")), None))

    @cached_property
    def panel(self) -> list[Element]:
        """The file panel, or the question over it: what has to be answered first."""
        panels = [window for window in self.windows if window.role in PANELS and window.name != "About Tonvale"]
        questions = [panel for panel in panels if not any(part.role == "text" for part in panel.walk())]
        return self._all_in(next(iter(questions + panels), None))

    @property
    def has_about(self) -> bool:
        return any(window.name == "About Tonvale" for window in self.windows)

    @staticmethod
    def _all_in(window: Element | None) -> list[Element]:
        return list(window.walk()) if window else []

    def of_role(self, role: str) -> list[Element]:
        return [element for element in self.main if element.role == role]

    @cached_property
    def texts(self) -> list[str]:
        return [element.name for element in self.of_role("label")]

    def button(self, *names: str) -> Element | None:
        """The first whose name begins so."""
        return next((button for button in self.of_role("push button") if button.name.startswith(names)), None)

    def describe(self) -> str:
        return ", ".join(" ".join([element.role, *([repr(element.name)] if element.name else []),
                                   *([] if element.enabled else ["disabled"]),
                                   *(["focused"] if "focused" in element.states else [])])
                         for window in self.windows for element in window.walk())


class Reader:
    def __init__(self, bus: Gio.DBusConnection, owner: str) -> None:
        self._bus, self._owner = bus, owner
        self._roles: dict[str, str] = {}  # of each thing by its path; it never changes

    def read(self) -> View:
        """@error Gone when something vanishes meanwhile, or nobody answers"""
        levels = self._read_levels()
        built: dict[str, Element] = {}
        for level in reversed(levels):
            for path, (states, name, children) in level.items():
                built[path] = Element(self._bus, self._owner, path, self._roles[path], name, states,
                                      tuple(built[child] for child in children if child in built))
        windows = built[ROOT].children
        things = [element for window in windows for element in window.walk()]
        pickers = [thing for thing in things if thing.role == "combo box" and thing.name.endswith(" key")]
        slider = next((thing for thing in things if thing.role == "slider"), None)
        questions = [self._property(picker.path, ACCESSIBLE, "Description") for picker in pickers]
        if slider:
            questions += [self._property(slider.path, VALUE, name) for name in ("CurrentValue", "MaximumValue")]
        answers = [answer[0] for answer in self._ask(questions)]
        return View(windows, dict(zip((picker.name for picker in pickers), answers, strict=False)),
                    tuple(answers[-2:]) if slider else None)

    def _read_levels(self) -> list[dict[str, tuple[frozenset[str], str, list[str]]]]:
        levels, paths = [], [ROOT]
        while paths:
            unknown = [path for path in paths if path not in self._roles]
            roles = self._ask([(path, ACCESSIBLE, "GetRoleName", None) for path in unknown])
            self._roles.update((path, role[0]) for path, role in zip(unknown, roles, strict=True))
            states = self._ask([(path, ACCESSIBLE, "GetState", None) for path in paths])
            named = [(path, self._names(*answer[0])) for path, answer in zip(paths, states, strict=True)]
            shown = [(path, names) for path, names in named if path == ROOT or "showing" in names]
            names = self._ask([self._property(path, ACCESSIBLE, "Name") for path, _ in shown])
            branches = [path for path, _ in shown if self._roles[path] not in LEAVES]
            answers = self._ask([(path, ACCESSIBLE, "GetChildren", None) for path in branches])
            children = {path: [child for _, child in answer[0] if child != NOTHING]
                        for path, answer in zip(branches, answers, strict=True)}
            levels.append({path: (state, name[0], children.get(path, []))
                           for (path, state), name in zip(shown, names, strict=True)})
            paths = [child for path in branches for child in children[path]]
        return levels

    @staticmethod
    def _names(low: int, high: int) -> frozenset[str]:
        return frozenset(name for bit, name in STATES.items() if (low | high << 32) >> bit & 1)

    @staticmethod
    def _property(path: str, interface: str, name: str) -> Question:
        return path, PROPERTIES, "Get", GLib.Variant("(ss)", (interface, name))

    def _ask(self, questions: list[Question]) -> list[Any]:
        answers: list[Any] = [None] * len(questions)
        failures: list[str] = []
        missing = len(questions)

        def on_answer(bus: Gio.DBusConnection, result: Gio.AsyncResult, index: int) -> None:
            nonlocal missing
            missing -= 1
            try:
                answers[index] = bus.call_finish(result).unpack()
            except GLib.Error as error:
                failures.append(error.message)

        for index, (path, interface, method, arguments) in enumerate(questions):
            self._bus.call(self._owner, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE,
                           ANSWER_MILLISECONDS, None, on_answer, index)
        while missing:
            GLib.MainContext.default().iteration(True)
        if failures:
            raise Gone(failures[0])
        return answers
