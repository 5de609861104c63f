# SPDX-FileCopyrightText: 2026 The Tonvale Authors
#
# SPDX-License-Identifier: GPL-3.0-or-later

"""Times whole processes: CPU, wall clock and peak memory, as the kernel accounts for them."""

import os
import subprocess
import time
from collections.abc import Sequence
from dataclasses import dataclass
from statistics import median


@dataclass
class Run:
    cpu: float  # seconds, user and system
    wall: float  # seconds
    memory: float  # MiB, the most that was resident


def run_once(command: Sequence[str]) -> Run:
    """Runs a command without a shell and without its output; a failure ends the benchmark."""
    start = time.monotonic()
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               stderr=subprocess.PIPE)
    message = process.stderr.read()
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise SystemExit(f"{command[0]} failed: {message.decode(errors='replace')}")
    return Run(usage.ru_utime + usage.ru_stime, time.monotonic() - start, usage.ru_maxrss / 1024)


def run_interleaved(commands: dict[str, list[str]], rounds: int) -> dict[str, list[Run]]:
    """A B C, A B C, ...: what slows the machine down for a while slows all of them alike."""
    runs: dict[str, list[Run]] = {name: [] for name in commands}
    for _ in range(rounds):
        for name, command in commands.items():
            runs[name].append(run_once(command))
    return runs


def ratio(runs: list[Run], base: list[Run], what: str) -> float:
    """The median of the ratios round by round, so that drift cancels."""
    return median(getattr(a, what) / getattr(b, what) for a, b in zip(runs, base))
