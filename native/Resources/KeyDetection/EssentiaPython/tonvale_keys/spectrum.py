# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Magnitude spectra of frames, and how far a song is off concert pitch."""

from __future__ import annotations

import numpy as np

from .decoding import SAMPLE_RATE

LENGTH = 8192  # 743 ms: resolves semitones from about E2 up
HOP = 4096
FRAME_SECONDS = HOP / SAMPLE_RATE
BATCH = 4  # frames per transform call; small batches stay in the processor's cache
CONCERT_A = 440.0

_WINDOW = np.hanning(LENGTH + 1)[:-1].astype(np.float32) * np.float32(4 / LENGTH)  # a full-scale sine peaks at 1
_LOWEST, _HIGHEST = 110.0, 1600.0  # below, bins are too wide for cents; above, partials are inharmonic
_PEAK_RANGE = 5.0  # natural log under the frame's maximum


def magnitudes(frames: np.ndarray) -> np.ndarray:
    """Magnitude spectrum of each frame, float32."""
    out = np.empty((len(frames), LENGTH // 2 + 1), np.float32)
    for start in range(0, len(frames), BATCH):
        batch = slice(start, start + BATCH)
        out[batch] = np.abs(np.fft.rfft(frames[batch] * _WINDOW))
    return out


class Tuning:
    """Collects spectral peaks and tells their common deviation from equal temperament at A = 440 Hz.

    The deviation is the angle of a circular mean with a period of one semitone.
    """

    def __init__(self) -> None:
        self._sum = 0j

    def add(self, spectra: np.ndarray) -> None:
        low, high = (int(f * LENGTH / SAMPLE_RATE) for f in (_LOWEST, _HIGHEST))
        levels = np.log(spectra[:, low - 1 : high + 2] + np.float32(1e-9))
        centre, left, right = levels[:, 1:-1], levels[:, :-2], levels[:, 2:]
        floor = levels.max(axis=1, keepdims=True) - _PEAK_RANGE
        row, column = np.nonzero((centre > left) & (centre >= right) & (centre > floor))
        a, b, c = left[row, column], centre[row, column], right[row, column]
        offset = 0.5 * (a - c) / (a - 2 * b + c)  # vertex of the parabola through the three points
        frequency = (column + low + offset) * (SAMPLE_RATE / LENGTH)
        semitone = 69 + 12 * np.log2(frequency / CONCERT_A)
        self._sum += complex(np.sum(np.exp(b / 2) * np.exp(2j * np.pi * semitone)))

    def cents(self) -> float:
        """-50..50; 0 when no peaks were seen."""
        return float(100 / (2 * np.pi) * np.angle(self._sum))
