# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Programs that are started, waited for, and never outlive the tests."""

from __future__ import annotations

import ctypes
import os
import signal
import subprocess
import time
from collections.abc import Callable
from pathlib import Path
from typing import Any

PR_SET_CHILD_SUBREAPER = 36  # linux/prctl.h


def adopt_orphans() -> None:
    """Makes this process the parent of every descendant whose own parent ends, so that none escapes."""
    ctypes.CDLL(None, use_errno=True).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)


def start(command: list[str], **options: Any) -> subprocess.Popen:
    """Starts a program that is killed when this process ends, however it ends."""
    options.setdefault("stdin", subprocess.DEVNULL)
    return subprocess.Popen(["setpriv", "--pdeathsig", "KILL", "--", *command], **options)


def wait_until(condition: Callable[[], Any], what: str | Callable[[], str], seconds: float = 20.0) -> Any:
    """Polls until the condition is true and returns its value. @error AssertionError says what was missing"""
    deadline = time.monotonic() + seconds
    while not (value := condition()):
        if time.monotonic() > deadline:
            raise AssertionError(f"waited {seconds:g} s in vain: {what() if callable(what) else what}")
        time.sleep(0.02)
    return value


def parents() -> dict[int, int]:
    """The parent of every process on this machine that can be seen."""
    found = {}
    for folder in Path("/proc").iterdir():
        if folder.name.isdigit():
            try:
                found[int(folder.name)] = int((folder / "stat").read_text().rpartition(")")[2].split()[1])
            except OSError:
                pass  # it has just ended
    return found


def descendants() -> set[int]:
    """The children of this process, their children, and so on, zombies included."""
    parent_of, family = parents(), {os.getpid()}
    while more := {child for child, parent in parent_of.items() if parent in family} - family:
        family |= more
    return family - {os.getpid()}


def end_descendants() -> None:
    """Ends and reaps everything that was started from here, and what that started: asks, then kills."""
    for number, seconds in ((signal.SIGTERM, 3.0), (signal.SIGKILL, 20.0)):
        for process in descendants():
            signal_descendant(process, number)
        deadline = time.monotonic() + seconds
        while (remaining := descendants()) and time.monotonic() < deadline:
            for process in remaining:
                reap(process)
            time.sleep(0.01)
    if remaining:
        raise AssertionError(f"the processes {remaining} do not end")


def signal_descendant(process: int, number: int) -> None:
    try:
        os.kill(process, number)
    except ProcessLookupError:
        pass  # ended meanwhile


def reap(process: int) -> None:
    try:
        os.waitpid(process, os.WNOHANG)
    except ChildProcessError:
        pass  # another process's child still; it becomes ours when that one ends
