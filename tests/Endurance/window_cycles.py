#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Drops, plays, retunes and saves songs again and again in one window, and watches what it holds of the machine.

Usage: TONVALE=PROGRAM window_cycles.py [CYCLES]
"""

from __future__ import annotations

import os
import sys
import time
from collections.abc import Callable
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "Window"))

import accessibility  # noqa: E402
import songs  # noqa: E402
from accessibility import Element, Gone  # noqa: E402
from application import Application, Installation  # noqa: E402
from cases import KEYS, SAVE_PANEL  # noqa: E402
from desktop import Desktop  # noqa: E402
from dragging import DragSource, links  # noqa: E402
from footprint import Footprint  # noqa: E402
from hands import Hands  # noqa: E402
from processes import wait_until  # noqa: E402
from reader import Reader, View  # noqa: E402

WARM_UP = 100  # cycles, until buffers, caches and the allocator have what they need
REPORT = 50
GROWTH = 5.0  # MiB allowed afterwards
PATIENCE = 60.0  # seconds for one step, on a machine with other work
FIRST_KEY = KEYS.index("A# / Bb major")


class WindowCycles:
    def __init__(self, desktop: Desktop, program: Path) -> None:
        installation = Installation(desktop.folder / "installation", program)
        self._hands = Hands(desktop.environment)
        self._drag_source = DragSource(desktop, self._hands)
        folder = desktop.make_folder("songs")
        self._songs = [songs.tone(folder / "one.wav", 4), songs.tone(folder / "two.wav", 6, 330)]
        self._saved = folder / "saved.wav"
        self._program = Application(desktop, installation, desktop.folder / "program", {})
        bus = accessibility.accessibility_bus(desktop.environment["DBUS_SESSION_BUS_ADDRESS"])
        self._reader = Reader(bus, accessibility.program(bus, self._program.process.pid))

    def run(self, number: int) -> None:
        """@error AssertionError"""
        song = self._songs[number % len(self._songs)]
        button = self._view().button("Browse files").area
        self._drag_source.drop(links(song), (button.x - 40, button.y - 60))
        self._wait(lambda view: song.name in view.texts and "Ready" in view.texts, song.name)
        self._view().button("Play preview").press()
        self._wait(lambda view: "Playing" in view.texts, "the preview")
        self._retune(1 + number % 3)
        self._save()

    def _retune(self, steps: int) -> None:
        """Up the list of keys from the one that every song begins with."""
        self._element("combo box", "New key").focus()
        self._wait(lambda view: any("focused" in picker.states for picker in view.of_role("combo box")), "the focus")
        for key in reversed(KEYS[FIRST_KEY - steps : FIRST_KEY]):
            self._hands.keys("Up")
            self._wait(lambda view, key=key: view.descriptions["New key"] == key, key)

    def _save(self) -> None:
        self._view().button("Convert to").press()
        self._wait(lambda view: any(part.role == "text" and "focused" in part.states for part in view.panel),
                   SAVE_PANEL)
        self._hands.keys("ctrl+a")
        self._hands.type(str(self._saved))
        self._hands.keys("Return")
        self._wait(lambda view: not view.panel and any(text.startswith("Saved") for text in view.texts), "the saving")
        self._saved.unlink()

    def _view(self) -> View:
        return self._wait(lambda view: bool(view.main), "the window")

    def _element(self, role: str, name: str) -> Element:
        return next(element for element in self._view().of_role(role) if element.name == name)

    def _wait(self, condition: Callable[[View], bool], what: str) -> View:
        def look() -> View | None:
            if self._program.output:
                raise AssertionError(f"it printed {self._program.output}")
            try:
                view = self._reader.read()
            except Gone:
                return None
            return view if condition(view) else None
        return wait_until(look, lambda: f"{what} among {self._reader.read().describe()}", PATIENCE)

    def footprint(self) -> Footprint:
        return Footprint.of(self._program.process.pid)

    def footprint_within(self, first: Footprint) -> Footprint:
        """Threads of what has just been saved may still be ending.
        @error AssertionError when threads or descriptors stay more than they were
        """
        return wait_until(lambda: (now := self.footprint()).is_within(first) and now,
                          lambda: f"no more threads and descriptors than in {first}, there are {self.footprint()}")


def main(cycles: int = 1000) -> int:
    if cycles <= WARM_UP:
        print(f"No more than the {WARM_UP} cycles of warm-up would show no growth.", file=sys.stderr)
        return 2
    desktop = Desktop()
    try:
        use = WindowCycles(desktop, Path(os.environ["TONVALE"]))
        begin = time.monotonic()
        first = None
        for cycle in range(1, cycles + 1):
            use.run(cycle)
            if cycle == WARM_UP:
                first = use.footprint()
            if cycle % REPORT == 0:
                now = use.footprint_within(first) if first else use.footprint()
                print(f"{cycle} cycles, {time.monotonic() - begin:.0f} s, {now}", flush=True)
        growth = use.footprint().memory - first.memory
        print(f"growth after {WARM_UP} cycles of warm-up: {growth:.2f} MiB")
        return 0 if growth < GROWTH else 1
    finally:
        desktop.close()


if __name__ == "__main__":
    sys.exit(main(*map(int, sys.argv[1:])))
