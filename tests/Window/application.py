# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The program under test, seen and used as through a screen reader."""

from __future__ import annotations

import os
import shutil
import subprocess
from collections.abc import Sequence
from pathlib import Path

import accessibility
from accessibility import Element, Gone
from desktop import Desktop
from processes import start, wait_until

DIALOGS = ("dialog", "alert", "file chooser")
START_SECONDS = 60.0  # with sanitizers on a busy machine; without, it is below one
AT_ONCE_SECONDS = 10.0  # on a busy machine


class Installation:
    """The program in a tree of its own, so that it has the tests' resources beside it."""

    def __init__(self, folder: Path, program: Path) -> None:
        self.program = folder / "bin" / program.name
        self.program.parent.mkdir(parents=True)
        try:
            os.link(program, self.program)
        except OSError:  # another file system
            shutil.copy2(program, self.program)
        self.helper = folder / "share/tonvale/KeyDetection/detect_key.py"
        self.helper.parent.mkdir(parents=True)


class Application:
    def __init__(self, desktop: Desktop, installation: Installation, folder: Path,
                 variables: dict[str, str | None], watcher: Sequence[str] = ()) -> None:
        """Starts it and waits until its window can be used, by keyboard too.
        @param folder     new; everything that the program may write by itself would be in there
        @param variables  of its environment, where it is not the tests' usual one; none: not set
        @param watcher    a command that becomes the one that follows it
        """
        self._bus = accessibility.accessibility_bus(desktop.environment["DBUS_SESSION_BUS_ADDRESS"])
        self.home, self.temporary = folder / "home", folder / "temporary"
        for made in (self.home, self.temporary):
            made.mkdir(parents=True)
        self._output = folder / "output"
        environment = {
            **desktop.environment, "HOME": str(self.home), "TMPDIR": str(self.temporary),
            "QT_QUICK_BACKEND": "software", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1", "QT_FORCE_STDERR_LOGGING": "1",
            # Whoever reads a window that changes asks for things that have just gone; that is no fault of the program.
            "QT_LOGGING_RULES": "qt.accessibility.*.warning=false", **variables}
        with open(self._output, "wb") as output:
            self.process = start([*watcher, str(installation.program)], stdout=output, stderr=output, cwd=folder,
                                 env={name: value for name, value in environment.items() if value is not None})
        self._owner = wait_until(self._registered, lambda: f"the program's window\n{self.output}", START_SECONDS)
        self.find("push button", "Browse files")
        self.wait_for_keyboard()

    def _registered(self) -> str | None:
        if self.process.poll() is not None:
            raise AssertionError(f"the program ended with {self.process.returncode}\n{self.output}")
        return accessibility.program(self._bus, self.process.pid)

    @property
    def output(self) -> str:
        """All that it has printed."""
        return self._output.read_text(errors="replace")

    @property
    def files_written(self) -> list[str]:
        """What it has left in the home directory and among the temporary files."""
        return sorted(str(path) for folder in (self.home, self.temporary) for path in folder.rglob("*"))

    def elements(self, hidden: bool = False) -> list[Element]:
        """All that shows, in reading order; what is in the tree without showing, too, when `hidden`."""
        for _ in range(50):
            try:
                root = accessibility.read(self._bus, self._owner, accessibility.ROOT, hidden)
                return [element for window in root.children for element in window.walk()]
            except Gone:
                if self.process.poll() is not None:
                    return []
        raise AssertionError("the program's window cannot be read: it changes all the time, or hangs")

    def look(self, role: str, name: str) -> Element | None:
        return next((element for element in self.elements() if (element.role, element.name) == (role, name)), None)

    def find(self, role: str, name: str) -> Element:
        return wait_until(lambda: self.look(role, name), lambda: f"{role} {name!r} among\n{self.describe()}")

    def button(self, name: str) -> Element:
        return self.find("push button", name)

    def press(self, name: str) -> None:
        self.button(name).press()

    def texts(self) -> list[str]:
        return [element.name for element in self.elements() if element.role == "label"]

    def wait_for_text(self, *texts: str) -> None:
        wait_until(lambda: set(texts) <= set(self.texts()), lambda: f"{texts} among\n{self.describe()}")

    def wait_for_enabled(self, name: str, enabled: bool = True) -> None:
        wait_until(lambda: self.button(name).enabled == enabled,
                   f"{name!r} to be {'enabled' if enabled else 'disabled'}")

    def wait_for_focus(self, role: str, name: str) -> None:
        wait_until(lambda: (element := self.look(role, name)) and "focused" in element.states,
                   lambda: f"the focus on {name!r}, it is on {self.focused()}")

    def wait_for_keyboard(self) -> None:
        """Waits until one of the windows has it; keys that are pressed before go nowhere."""
        wait_until(lambda: any("active" in element.states for element in self.elements()),
                   lambda: f"a window with the keyboard among\n{self.describe()}")

    def focused(self) -> Element | None:
        """What has the keyboard; the innermost of nested things."""
        return next((element for element in reversed(self.elements()) if "focused" in element.states), None)

    def dialog(self, title: str | None = None) -> Element:
        """A window beside the main one, by its title."""
        def find() -> Element | None:
            return next((element for element in self.elements()
                         if element.role in DIALOGS and title in (None, element.name)), None)
        return wait_until(find, lambda: f"the dialog {title!r} among\n{self.describe()}")

    def wait_for_no_dialog(self) -> None:
        wait_until(lambda: not any(element.role in DIALOGS for element in self.elements()),
                   lambda: f"no dialog among\n{self.describe()}")

    def describe(self) -> str:
        return "\n".join(f"  {element.role} {element.name!r} {' '.join(sorted(element.states))}"
                         for element in self.elements())

    def wait_for_end(self, seconds: float = 20.0) -> int:
        """@return the exit status"""
        try:
            return self.process.wait(seconds)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"the program still runs after {seconds:g} s") from None

    def kill(self) -> None:
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
