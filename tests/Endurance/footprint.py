# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What a program holds of the machine."""

from __future__ import annotations

from dataclasses import dataclass
from pathlib import Path


@dataclass(frozen=True)
class Footprint:
    memory: float  # MiB that are its own: not shared with other programs, not to be read again from a file
    threads: int
    descriptors: int

    @classmethod
    def of(cls, process: int) -> Footprint:
        folder = Path(f"/proc/{process}")
        lines = (line.split() for line in (folder / "smaps_rollup").read_text().splitlines()[1:])
        kibibytes = {words[0]: int(words[1]) for words in lines}
        return cls(kibibytes["Private_Dirty:"] / 1024, len(list((folder / "task").iterdir())),
                   len(list((folder / "fd").iterdir())))

    def is_within(self, other: Footprint) -> bool:
        """Whether there are no more threads and descriptors."""
        return self.threads <= other.threads and self.descriptors <= other.descriptors

    def __str__(self) -> str:
        return f"{self.memory:.1f} MiB, {self.threads} threads, {self.descriptors} descriptors"
