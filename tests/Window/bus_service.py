# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""A service on the desktop's session bus that stands in for a real one: a script that talks in lines."""

from __future__ import annotations

import select
import subprocess
from pathlib import Path

from desktop import Desktop

ANSWER_SECONDS = 60.0


class BusService:
    def __init__(self, desktop: Desktop, script: str, *arguments: str) -> None:
        """Starts it and waits until it can be called."""
        self._process = desktop.start("/usr/bin/python3", str(Path(__file__).with_name(script)), *arguments,
                                      stdin=subprocess.PIPE, stdout=subprocess.PIPE, bufsize=0)
        if (line := self.read()) != "ready":
            raise AssertionError(f"{script} did not start: {line!r}")

    def read(self) -> str:
        """The next line that it says. @error AssertionError when it says none"""
        if not select.select([self._process.stdout], [], [], ANSWER_SECONDS)[0]:
            raise AssertionError("the service has nothing to say")
        return self._process.stdout.readline().decode().rstrip("\n")

    def write(self, line: str) -> None:
        self._process.stdin.write(f"{line}\n".encode())

    def close(self) -> None:
        self._process.stdin.close()
        self._process.kill()
        self._process.wait()
        self._process.stdout.close()
