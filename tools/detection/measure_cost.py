# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the helper costs beside ffmpeg's own decoding: `measure_cost.py SONG ...`.

Processor seconds of the helper with its ffmpeg, their ratio to ffmpeg alone, and the largest sum of
both processes' resident memory (sampled, so the shortest peaks can escape).
"""

from __future__ import annotations

import resource
import subprocess
import sys
import threading
from pathlib import Path

import shipped
from tonvale_keys import decoding

SCRIPT = shipped.PACKAGE_FOLDER.parent / "detect_key.py"
ENVIRONMENT = {"PYTHONPATH": str(shipped.PACKAGE_FOLDER), "PATH": "/usr/bin:/bin:/usr/sbin:/sbin"}
_SAMPLE_SECONDS = 0.01


def _resident_kib(process: str) -> int:
    try:
        fields = dict(line.split(":", 1) for line in Path(f"/proc/{process}/status").read_text().splitlines())
        return int(fields["VmRSS"].split()[0])
    except (OSError, KeyError):
        return 0


def _children(process: int) -> list[str]:
    try:
        return Path(f"/proc/{process}/task/{process}/children").read_text().split()
    except OSError:
        return []


def _watch(process: subprocess.Popen, ended: threading.Event) -> int:
    largest = 0
    while not ended.wait(_SAMPLE_SECONDS):
        ids = [str(process.pid), *_children(process.pid)]
        largest = max(largest, sum(map(_resident_kib, ids)))
    return largest


def _spent() -> float:
    """Processor seconds of all processes that have ended below this one."""
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def run(command: list[str]) -> tuple[float, float]:
    """Processor seconds of the command with its children, and their largest resident memory in MiB."""
    before = _spent()
    process = subprocess.Popen(command, env=ENVIRONMENT, stdout=subprocess.DEVNULL)
    ended, found = threading.Event(), []
    watcher = threading.Thread(target=lambda: found.append(_watch(process, ended)))
    watcher.start()
    process.wait()
    spent = _spent() - before
    ended.set()
    watcher.join()
    return spent, found[0] / 1024


def main() -> None:
    print("| song | helper + ffmpeg CPU s | ffmpeg alone CPU s | ratio | helper + ffmpeg peak MiB |\n|---|---|---|---|---|")
    for song in sys.argv[1:]:
        whole, memory = run(["/usr/bin/python3", str(SCRIPT), song])
        alone, _ = run(decoding.command(song))
        print(f"| {Path(song).name} | {whole:.3f} | {alone:.3f} | {whole / alone:.2f} | {memory:.1f} |")


if __name__ == "__main__":
    main()
