# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""A sung line: harmonics with glides, vibrato, unsteady pitch and vowel formants.

Sampled instruments hold their pitch; singers do not. The line makes the training recordings
contain the smeared partials that real songs are full of.
"""

from __future__ import annotations

import numpy as np

from midi_file import Note

HARMONICS = 24
CONTROL_RATE = 200  # pitch and formant curves are drawn at this rate and interpolated
# First three formants in Hz of five vowels (Peterson & Barney 1952, rounded averages).
VOWELS = ((730, 1090, 2440), (530, 1840, 2480), (270, 2290, 3010), (570, 840, 2410), (300, 870, 2240))
FORMANT_WIDTH = 110.0
GLIDE_SECONDS = 0.06


def _pitch_curve(notes: list[tuple[float, float, int]], length: int, rng: np.random.Generator) -> tuple:
    pitch, level = np.zeros(length), np.zeros(length)
    for start, end, note in notes:
        a, b = int(start * CONTROL_RATE), min(length, int(end * CONTROL_RATE))
        pitch[a:] = note + rng.normal(0, 0.12)  # a singer's intonation: some 12 cents
        level[a:b] = rng.uniform(0.7, 1.0)
    glide = np.hanning(int(GLIDE_SECONDS * CONTROL_RATE) + 2)
    glide /= glide.sum()
    times = np.arange(length) / CONTROL_RATE
    vibrato = rng.uniform(0.0, 0.7) * np.sin(2 * np.pi * rng.uniform(4.8, 6.4) * times)
    drift = np.convolve(rng.normal(0, 0.6, length), np.ones(40) / 40, "same")
    return np.convolve(pitch, glide, "same") + vibrato + drift, np.convolve(level, glide, "same")


def _formant_gain(frequency: np.ndarray, vowel: tuple[int, ...]) -> np.ndarray:
    gain = np.full_like(frequency, 0.03)
    for formant, weight in zip(vowel, (1.0, 0.5, 0.25)):
        gain += weight / (1 + ((frequency - formant) / FORMANT_WIDTH) ** 2)
    return gain


def sing(notes: list[Note], tick_seconds: float, frames: int, rate: int, rng: np.random.Generator) -> np.ndarray:
    """The notes as a sung line of `frames` samples at `rate`, at most 1 in amplitude."""
    timed = [(n.start * tick_seconds, n.end * tick_seconds, n.pitch) for n in notes]
    length = frames * CONTROL_RATE // rate + 1
    pitch, level = _pitch_curve(timed, length, rng)
    at = np.arange(frames) * (CONTROL_RATE / rate)
    control = np.arange(length)
    frequency = np.interp(at, control, 440 * 2 ** ((pitch - 69) / 12)).astype(np.float32)
    phase = np.cumsum(frequency, dtype=np.float64) * (2 * np.pi / rate)
    vowel = VOWELS[rng.integers(len(VOWELS))]
    line = np.zeros(frames, np.float32)
    for harmonic in range(1, HARMONICS + 1):
        gain = _formant_gain(frequency * harmonic, vowel) * (frequency * harmonic < rate / 2) / harmonic**0.5
        line += gain * np.sin(phase * harmonic).astype(np.float32)
    line *= np.interp(at, control, level).astype(np.float32)
    return line / max(1e-6, float(np.abs(line).max()))
