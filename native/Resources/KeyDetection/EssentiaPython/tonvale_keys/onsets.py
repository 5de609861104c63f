# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Onset strength over time: how much louder the spectrum's bands become from frame to frame."""

from __future__ import annotations

import numpy as np

from .decoding import SAMPLE_RATE
from .framing import FrameCutter

LENGTH = 1024
HOP = 256
RATE = SAMPLE_RATE / HOP  # curve values per second
CURVES = 3  # all bands, the lowest quarter, the highest third
_BANDS = 24
_BATCH = 16
_LAG = 1  # frames between the two levels compared
_COMPRESSION = 100.0
_WINDOW = np.hanning(LENGTH + 1)[:-1].astype(np.float32) * np.float32(4 / LENGTH)


def _band_matrix() -> np.ndarray:
    """Means over geometric bands of bins 2..512."""
    edges = np.unique(np.round(np.geomspace(2, LENGTH // 2, _BANDS + 1)).astype(int))
    matrix = np.zeros((LENGTH // 2 + 1, len(edges) - 1), np.float32)
    for band, (low, high) in enumerate(zip(edges, edges[1:])):
        matrix[low:high, band] = 1 / (high - low)
    return matrix


_BAND_MEANS = _band_matrix()
_BAND_COUNT = _BAND_MEANS.shape[1]


def _curve_matrix() -> np.ndarray:
    matrix = np.zeros((_BAND_COUNT, CURVES), np.float32)
    matrix[:, 0] = 1
    matrix[: _BAND_COUNT // 4, 1] = 1
    matrix[-(_BAND_COUNT // 3) :, 2] = 1
    return matrix


_CURVE_SUMS = _curve_matrix()


def _levels(frames: np.ndarray) -> np.ndarray:
    out = np.empty((len(frames), _BAND_COUNT), np.float32)
    for start in range(0, len(frames), _BATCH):
        batch = slice(start, start + _BATCH)
        out[batch] = np.abs(np.fft.rfft(frames[batch] * _WINDOW)).astype(np.float32) @ _BAND_MEANS
    return np.log1p(np.float32(_COMPRESSION) * out)


class OnsetTrack:
    """Feed it blocks with add(); finish() gives the CURVES onset curves, a frame a row."""

    def __init__(self) -> None:
        self._cutter = FrameCutter(LENGTH, HOP)
        self._before = np.zeros((0, _BAND_COUNT), np.float32)
        self._parts: list[np.ndarray] = []

    def add(self, block: np.ndarray) -> None:
        levels = np.concatenate([self._before, _levels(self._cutter.cut(block))])
        rises = np.maximum(levels[_LAG:] - levels[:-_LAG], 0)
        self._before = levels[-_LAG:].copy()
        self._parts.append((rises @ _CURVE_SUMS).astype(np.float16))

    def finish(self) -> np.ndarray:
        return np.concatenate([np.zeros((0, CURVES), np.float16), *self._parts])
