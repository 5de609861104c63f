# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the detection tests share: where things are, synthetic songs, and the helper as the application starts it."""

from __future__ import annotations

import json
import os
import subprocess
import sys
import wave
from pathlib import Path

sys.dont_write_bytecode = True
ROOT = Path(__file__).resolve().parents[2]
DETECTION = ROOT / "native/Resources/KeyDetection"
PACKAGE_FOLDER = DETECTION / "EssentiaPython"
if str(PACKAGE_FOLDER) not in sys.path:
    sys.path.insert(0, str(PACKAGE_FOLDER))

import numpy as np  # noqa: E402

PYTHON = "/usr/bin/python3"
SEARCH_PATH = "/usr/bin:/bin:/usr/sbin:/sbin"
PATIENCE_SECONDS = 120  # for a busy machine; only what hangs takes so long
RATE = 11025
# Chords as semitones above the tonic: a progression and its cadence leave no doubt about the key.
MAJOR_SONG = ((0, 4, 7), (5, 9, 12), (7, 11, 14), (0, 4, 7), (9, 12, 16), (2, 5, 9), (7, 11, 14), (0, 4, 7))
MINOR_SONG = ((0, 3, 7), (5, 8, 12), (7, 11, 14), (0, 3, 7), (8, 12, 15), (5, 8, 12), (7, 11, 14), (0, 3, 7))


def tone(pitch: float, seconds: float, rate: int = RATE) -> np.ndarray:
    """Six harmonics of a MIDI pitch, plucked."""
    times = np.arange(int(seconds * rate)) / rate
    hz = 440 * 2 ** ((pitch - 69) / 12)
    wave_form = sum(0.6**h * np.sin(2 * np.pi * hz * (h + 1) * times) for h in range(6) if hz * (h + 1) < rate / 2)
    return (wave_form * np.exp(-1.5 * times)).astype(np.float32)


def song(tonic: int, minor: bool, repeats: int = 2, chord_seconds: float = 1.0, rate: int = RATE) -> np.ndarray:
    """A progression with bass in the key; `tonic` is a pitch class."""
    parts = []
    for steps in (MINOR_SONG if minor else MAJOR_SONG) * repeats:
        low = 48 + tonic
        notes = [low + step for step in steps] + [low - 12 + steps[0]]
        parts.append(sum(tone(note, chord_seconds, rate) for note in notes))
    audio = np.concatenate(parts)
    return (0.5 * audio / np.abs(audio).max()).astype(np.float32)


def clicks(bpm: float, seconds: float) -> np.ndarray:
    """Noise bursts on the beat, every other one louder and lower."""
    rng = np.random.default_rng(7)
    audio = np.zeros(int(seconds * RATE), np.float32)
    for beat, start in enumerate(np.arange(0, seconds - 0.2, 60 / bpm)):
        at, length = int(start * RATE), int(0.06 * RATE)
        burst = rng.normal(size=length) * np.exp(-np.arange(length) / (0.012 * RATE))
        audio[at : at + length] += (0.5 if beat % 2 else 0.3) * burst
        if beat % 2 == 0:
            audio[at : at + length * 2] += 0.6 * tone(33, 0.12)[: length * 2]
    return audio


def write_wav(path: Path | bytes, audio: np.ndarray, rate: int = RATE, channels: int = 1) -> None:
    """16-bit WAV with the same samples on every channel."""
    data = np.repeat((np.clip(audio, -1, 1) * 32767).astype("<i2")[:, None], channels, axis=1)
    with open(path, "wb") as file, wave.open(file, "wb") as out:
        out.setnchannels(channels)
        out.setsampwidth(2)
        out.setframerate(rate)
        out.writeframes(data.tobytes())


def start_helper(path: str | bytes, script: Path = DETECTION / "detect_key.py", search_path: str = SEARCH_PATH,
                 modules: str | None = None, **options) -> subprocess.Popen:
    """The helper as the application starts it: two arguments, two environment variables."""
    environment = {"PYTHONPATH": modules or str(script.parent / "EssentiaPython"), "PATH": search_path}
    return subprocess.Popen([PYTHON, str(script), path], env=environment, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE, **options)


def run_helper(path: str | bytes, **options) -> tuple[int, dict, bytes]:
    """Exit status, the one JSON object on standard output, and standard error."""
    process = start_helper(path, **options)
    try:
        output, errors = process.communicate(timeout=PATIENCE_SECONDS)
    finally:
        process.kill()
    return process.returncode, json.loads(output.decode("utf-8")), errors


def have_ffmpeg() -> bool:
    return os.path.exists("/usr/bin/ffmpeg")
