# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Keyboard and mouse of the virtual display."""

from __future__ import annotations

import subprocess


class Hands:
    def __init__(self, environment: dict[str, str]) -> None:
        self._environment = environment

    def _do(self, *command: object) -> str:
        return subprocess.run(["xdotool", *map(str, command)], env=self._environment, check=True, timeout=60,
                              capture_output=True, text=True).stdout

    def keys(self, *combinations: str) -> None:
        """Presses keys one after another, "ctrl+o" or "Tab"."""
        self._do("key", "--delay", 8, "--", *combinations)

    def type(self, text: str) -> None:
        self._do("type", "--delay", 8, "--", text)

    def move(self, place: tuple[int, int]) -> None:
        self._do("mousemove", *place)

    def press(self) -> None:
        self._do("mousedown", 1)

    def drag_on(self, place: tuple[int, int]) -> None:
        """Moves there in two steps, with the button as it is."""
        self._do("mousemove", place[0], place[1] - 3, "sleep", 0.03, "mousemove", *place)

    def release(self) -> None:
        self._do("mouseup", 1)

    def click(self, place: tuple[int, int]) -> None:
        self._do("mousemove", *place, "click", 1)

    def double_click(self, place: tuple[int, int]) -> None:
        self._do("mousemove", *place, "click", "--repeat", 2, "--delay", 60, 1)

    def scroll(self, place: tuple[int, int], steps: int) -> None:
        """Turns the wheel, upwards when `steps` is negative."""
        self._do("mousemove", *place, "click", "--repeat", abs(steps), "--delay", 8, 4 if steps < 0 else 5)

    def drag(self, begin: tuple[int, int], *places: tuple[int, int]) -> None:
        """Presses the button, moves through the places and releases it at the last one."""
        moves = [word for place in places for word in ("mousemove", *place, "sleep", 0.03)]
        self._do("mousemove", *begin, "mousedown", 1, "sleep", 0.03, *moves, "mouseup", 1)

    def windows(self, process: int) -> list[int]:
        """The windows that a program shows."""
        found = subprocess.run(["xdotool", "search", "--all", "--onlyvisible", "--pid", str(process), "--name", "."],
                               env=self._environment, check=False, timeout=60, capture_output=True, text=True)
        return [int(number) for number in found.stdout.split()]

    def window_name(self, window: int) -> str:
        return self._do("getwindowname", window).rstrip("\n")

    def window_process(self, window: int) -> int:
        return int(self._do("getwindowpid", window))

    def window_size(self, window: int) -> tuple[int, int]:
        values = dict(line.split("=") for line in self._do("getwindowgeometry", "--shell", window).split())
        return int(values["WIDTH"]), int(values["HEIGHT"])

    def resize(self, window: int, width: int, height: int) -> None:
        self._do("windowsize", window, width, height)
