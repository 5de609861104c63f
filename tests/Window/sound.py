# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Hears what the sound server plays, and measures its pitch."""

from __future__ import annotations

import math
import subprocess
import threading

import numpy as np
from processes import wait_until

SILENCE = 0.01  # -40 dBFS; the songs of the tests peak at 0.5


def pitch_of(samples: np.ndarray, rate: int) -> float | None:
    """The strongest frequency in Hz, to a few hundredths of a cent for a sine; none for silence."""
    if len(samples) == 0 or np.sqrt(np.mean(samples**2)) < SILENCE:
        return None
    spectrum = np.abs(np.fft.rfft(samples * np.hanning(len(samples)), 8 * len(samples)))
    peak = min(max(int(spectrum.argmax()), 1), len(spectrum) - 2)
    below, at, above = np.log(spectrum[peak - 1 : peak + 2] + 1e-12)
    # Between bins, the top of a parabola; an edge of the spectrum may have none, and is taken as it is.
    top = float(np.clip(0.5 * (below - above) / min(below - 2 * at + above, -1e-9), -0.5, 0.5))
    return (peak + top) * rate / (8 * len(samples))


def cents(heard: float, expected: float) -> float:
    return 1200 * math.log2(heard / expected)


class Recorder:
    """Keeps everything that a program writes to its output as 32-bit float samples."""

    RATE = 48000

    def __init__(self, program: subprocess.Popen) -> None:
        self._blocks: list[np.ndarray] = []
        self._length = 0
        self._lock = threading.Lock()
        threading.Thread(target=self._read, args=(program.stdout,), daemon=True).start()

    def _read(self, stream: object) -> None:
        with stream:
            while block := stream.read(480 * 4):
                samples = np.frombuffer(block[: len(block) // 4 * 4], np.float32)
                with self._lock:
                    self._blocks.append(samples)
                    self._length += len(samples)

    def wait_for_sound(self, seconds: float) -> None:
        wait_until(lambda: self.now() > 0, "the sound server's monitor", seconds)

    def now(self) -> int:
        """The number of samples heard so far."""
        with self._lock:
            return self._length

    def heard(self, since: int) -> np.ndarray:
        with self._lock:
            blocks, missing = [], self._length - since
            for block in reversed(self._blocks):
                if missing <= 0:
                    break
                blocks.append(block)
                missing -= len(block)
            samples = np.concatenate(blocks[::-1]) if blocks else np.zeros(0, np.float32)
            return samples[max(0, -missing) :]

    def next(self, seconds: float) -> np.ndarray:
        """Listens for so long from now on."""
        start = self.now()
        wait_until(lambda: self.now() >= start + seconds * self.RATE, "more sound", seconds + 20)
        return self.heard(start)[: int(seconds * self.RATE)]

    def pitch(self, seconds: float = 0.5) -> float | None:
        """The pitch of the last so many seconds, in Hz; none for silence."""
        return pitch_of(self.heard(self.now() - int(seconds * self.RATE)), self.RATE)
