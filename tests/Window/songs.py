# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Songs for the tests, and what is in a file that the program wrote."""

from __future__ import annotations

import struct
import wave
from dataclasses import dataclass
from pathlib import Path

import numpy as np

RATE = 44100
CONCERT_PITCH = 440.0  # Hz


def write_wav(file: Path, samples: np.ndarray, rate: int = RATE) -> Path:
    with wave.open(str(file), "wb") as out:
        out.setnchannels(1)
        out.setsampwidth(2)
        out.setframerate(rate)
        out.writeframes((samples * 32767).astype("<i2").tobytes())
    return file


def tone(file: Path, seconds: float, hz: float = CONCERT_PITCH) -> Path:
    """A sine at half of full scale."""
    return write_wav(file, 0.5 * np.sin(2 * np.pi * hz * np.arange(int(seconds * RATE)) / RATE))


def scale_pitch(second: int) -> float:
    """The pitch in Hz of the scale below during a second."""
    return 220 * 2 ** (second / 24)


def scale(file: Path, seconds: int) -> Path:
    """Rises by a quarter tone each second, so that what is heard tells where the song is."""
    hz = np.repeat([scale_pitch(second) for second in range(seconds)], RATE)
    return write_wav(file, 0.5 * np.sin(2 * np.pi * np.cumsum(hz) / RATE))


def scale_second(hz: float) -> float:
    """Where a pitch of the scale is heard, in seconds."""
    return 24 * float(np.log2(hz / 220))


def silence(file: Path, hours: float) -> Path:
    """A long stereo song that takes no room on the disk; rendering it takes a while."""
    size = int(hours * 3600 * RATE) * 4
    header = struct.pack("<4sI4s4sIHHIIHH4sI", b"RIFF", 36 + size, b"WAVE", b"fmt ", 16, 1, 2, RATE, RATE * 4, 4, 16,
                         b"data", size)
    file.write_bytes(header)
    with open(file, "r+b") as out:
        out.truncate(len(header) + size)
    return file


@dataclass
class Recording:
    """A WAV file's content."""

    channels: int
    bits: int
    rate: int
    samples: np.ndarray

    @property
    def seconds(self) -> float:
        return len(self.samples) / self.rate


def read_wav(file: Path) -> Recording:
    with wave.open(str(file)) as source:
        data = np.frombuffer(source.readframes(source.getnframes()), "<i2").astype(np.float32) / 32768
        return Recording(source.getnchannels(), 8 * source.getsampwidth(), source.getframerate(),
                         data.reshape(-1, source.getnchannels())[:, 0])
