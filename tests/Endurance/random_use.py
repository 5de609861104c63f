#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Uses the window at random on a desktop of its own, and looks at everything after each action.

Usage: TONVALE=PROGRAM random_use.py [ACTIONS [SEED]]
"""

from __future__ import annotations

import os
import random
import subprocess
import sys
import time
from collections import Counter, deque
from pathlib import Path

WINDOW_TESTS = Path(__file__).resolve().parent.parent / "Window"
sys.dont_write_bytecode = True
sys.path.insert(0, str(WINDOW_TESTS))

import accessibility  # noqa: E402
from accessibility import Gone  # noqa: E402
from application import Application, Installation  # noqa: E402
from desktop import Desktop  # noqa: E402
from dragging import DragSource  # noqa: E402
from footprint import Footprint  # noqa: E402
from hands import Hands  # noqa: E402
from materials import Materials  # noqa: E402
from promises import Promises  # noqa: E402
from reader import Reader, View  # noqa: E402
from user import Expectation, User  # noqa: E402

ANSWER_SECONDS = 30.0  # on a machine with other work; alone, it answers within a tenth of a second
HASTE = 4  # actions at most between two looks
REPORT_SECONDS = 60.0
FAILURES_ENOUGH = 10


class Broken(AssertionError):
    pass


class RandomUse:
    def __init__(self, desktop: Desktop, program: Path, seed: int) -> None:
        self._desktop = desktop
        self._installation = Installation(desktop.folder / "installation", program)
        self._materials = Materials(desktop.make_folder("songs"), self._installation.helper)
        self._portal = desktop.start("/usr/bin/python3", str(WINDOW_TESTS / "settings_portal.py"), "2",
                                     stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1)
        self._portal.stdout.readline()
        hands = Hands(desktop.environment)
        self._user = User(seed, hands, DragSource(desktop, hands), self._materials, self._change_scheme)
        self._programs = 0
        self._last: deque[str] = deque(maxlen=25)
        self.actions: Counter[str] = Counter()
        self.slowest = 0.0

    def _change_scheme(self, scheme: int) -> None:
        self._portal.stdin.write(f"{scheme}\n")
        self._portal.stdout.readline()

    def start(self) -> None:
        self._programs += 1
        self._program = Application(self._desktop, self._installation,
                                    self._desktop.folder / f"program{self._programs}", {})
        self._user.program = self._program
        bus = accessibility.accessibility_bus(self._desktop.environment["DBUS_SESSION_BUS_ADDRESS"])
        self._reader = Reader(bus, accessibility.program(bus, self._program.process.pid))
        self._view = self._settle(None)

    def kill(self) -> None:
        self._materials.end_helpers(self._program.process.pid)
        self._program.kill()

    def step(self) -> None:
        """A few actions, and a look at what came of them. @error Broken"""
        for _ in range(HASTE):
            what, expectation, looks = self._user.act(self._view)
            self._last.append(what)
            self.actions[what.split(" ")[0]] += 1
            if looks:
                break
        self._view = self._settle(expectation)

    def _settle(self, expectation: Expectation | None) -> View:
        """Reads the window until it keeps every promise; it changes while it is read."""
        begin = time.monotonic()
        while True:
            broken, view = self._look(expectation)
            if not broken:
                self.slowest = max(self.slowest, time.monotonic() - begin)
                return view
            if self._program.process.poll() is not None or self._program.output \
                    or time.monotonic() > begin + ANSWER_SECONDS:
                raise Broken("; ".join(broken) + (f"\n{view.describe()}" if view else ""))

    def _look(self, expectation: Expectation | None) -> tuple[list[str], View | None]:
        if self._program.process.poll() is not None:
            return [f"it ended with {self._program.process.returncode}: {self._program.output}"], None
        if self._program.output:
            return [f"it printed {self._program.output}"], None
        try:
            view = self._reader.read()
            broken = Promises(view, self._materials.names).broken()
            if expectation and not expectation(view):
                broken.append("what was done had no effect")
        except (Gone, ValueError, IndexError) as error:
            return [f"cannot be read: {error}"], None
        return broken, view

    def footprint(self) -> Footprint:
        return Footprint.of(self._program.process.pid)

    def last_actions(self) -> str:
        return "\n".join(f"    {what}" for what in self._last)


def main(actions: int = 10000, seed: int | None = None) -> int:
    seed = random.randrange(1, 100000) if seed is None else seed
    print(f"seed {seed}", flush=True)
    desktop = Desktop()
    try:
        use = RandomUse(desktop, Path(os.environ["TONVALE"]), seed)
        failures = run(use, actions)
        print(f"{use.actions.total()} actions of seed {seed}, {failures} failures, slowest answer {use.slowest:.1f} s\n"
              + ", ".join(f"{name} {count}" for name, count in use.actions.most_common()))
    finally:
        desktop.close()
    return 1 if failures else 0


def run(use: RandomUse, actions: int) -> int:
    """@return the number of failures; after each, the program starts afresh"""
    failures = 0
    begin = reported = time.monotonic()
    use.start()
    while use.actions.total() < actions and failures < FAILURES_ENOUGH:
        try:
            use.step()
        except Broken as broken:
            failures += 1
            print(f"BROKEN at action {use.actions.total()}: {broken}\n  after\n{use.last_actions()}", flush=True)
            use.kill()
            use.start()
        if time.monotonic() > reported + REPORT_SECONDS:
            reported = time.monotonic()
            print(f"{use.actions.total()} actions, {reported - begin:.0f} s, {use.footprint()}", flush=True)
    use.kill()
    return failures


if __name__ == "__main__":
    sys.exit(main(*map(int, sys.argv[1:])))
