# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""How strongly onset curves repeat after each lag: locally levelled, windowed autocorrelation."""

from __future__ import annotations

import numpy as np

from .onsets import CURVES, RATE

WINDOW_SECONDS, HOP_SECONDS = 16, 4
LAGS = int(12 * RATE)
_TREND_SECONDS, _LEVEL_SECONDS = 2, 6
_SECTION = 1 << 14  # values levelled at a time, so long songs need no long transforms


def _smooth(curve: np.ndarray, window: np.ndarray) -> np.ndarray:
    """Centred weighted mean; near the ends over what there is."""
    size = 1 << (len(curve) + len(window) - 2).bit_length()
    shape = np.fft.rfft(window, size)
    start = len(window) // 2

    def filtered(values: np.ndarray) -> np.ndarray:
        return np.fft.irfft(np.fft.rfft(values, size) * shape, size)[start : start + len(curve)]

    return filtered(curve) / filtered(np.ones(len(curve)))


def _level(curve: np.ndarray) -> np.ndarray:
    """Minus its trend, divided by its local effective value."""
    flat = curve - _smooth(curve, np.hanning(int(_TREND_SECONDS * RATE)))
    power = _smooth(flat * flat, np.ones(int(_LEVEL_SECONDS * RATE)))
    return flat / np.sqrt(np.maximum(power, 1e-6 + 0.01 * flat.var()))


def _levelled(curve: np.ndarray) -> np.ndarray:
    margin = int(_LEVEL_SECONDS * RATE)
    out = np.empty(len(curve), np.float32)
    for start in range(0, len(curve), _SECTION):
        first = max(0, start - margin)
        part = _level(curve[first : start + _SECTION + margin].astype(np.float64))
        out[start : start + _SECTION] = part[start - first : start - first + _SECTION]
    return out


def _autocorrelation(curve: np.ndarray) -> np.ndarray:
    """Mean of the windows' autocorrelations, each 1 at lag 0 and free of the bias of short overlaps."""
    length = min(len(curve), int(WINDOW_SECONDS * RATE))
    size = 1 << (2 * length - 1).bit_length()
    overlap = np.maximum(length - np.arange(size), max(1, length / 8))
    total = np.zeros(LAGS + 1)
    for start in range(0, len(curve) - length + 1, int(HOP_SECONDS * RATE)):
        power = np.abs(np.fft.rfft(curve[start : start + length], size)) ** 2
        found = (np.fft.irfft(power, size) / overlap)[: LAGS + 1]
        if found[0] > 0:
            total[: len(found)] += found / found[0]
    return total / max(total[0], 1e-9)


def of(curves: np.ndarray) -> np.ndarray:
    """Periodicity of each curve at the lags 0..LAGS, a curve a row."""
    return np.stack([_autocorrelation(_levelled(curves[:, index])) for index in range(CURVES)])
