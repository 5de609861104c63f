# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Chooses the tempo among the periods that stand out, by a small trained softmax over the candidates."""

from __future__ import annotations

import numpy as np

from .onsets import RATE
from .periodicity import LAGS

MINIMUM_SECONDS = 6
_SLOWEST, _FASTEST = 40.0, 215.0
_PEAKS = 10
_RELATIVES = (1, 1 / 3, 1 / 2, 2 / 3, 3 / 4, 4 / 3, 3 / 2, 2, 3)
_SAME = 0.02  # candidates closer than this are one
_ALL, _LOW, _HIGH = range(3)
# (curve, multiple of the period) whose periodicity the decision looks at.
_LOOKS = tuple((_ALL, m) for m in (1, 2, 3, 4, 8, 1 / 2, 1 / 3, 1 / 4, 2 / 3, 3 / 2)) + tuple(
    (_LOW, m) for m in (1, 2, 4, 1 / 2, 3 / 2)) + tuple((_HIGH, m) for m in (1, 2, 1 / 2, 1 / 4))
FEATURES = 2 * len(_LOOKS) + 5
_MIDDLE_BPM, _COMFORT_OCTAVES = 110.0, 0.6


def _at(curve: np.ndarray, lag: np.ndarray) -> np.ndarray:
    """Linear interpolation; 0 beyond the longest lag."""
    return np.interp(lag, np.arange(LAGS + 1), curve, right=0.0)


def _refined(curve: np.ndarray, period: float) -> float:
    """Sharpens a period at its 1st, 2nd, 4th .. multiples, where an error shows magnified."""
    for multiple in (1, 2, 4, 8, 16):
        lag = int(round(period * multiple))
        if lag + 2 > LAGS:
            break
        near = curve[lag - 1 : lag + 2]
        peak = lag - 1 + int(near.argmax())
        if not 1 <= peak < LAGS:
            break
        a, b, c = curve[peak - 1 : peak + 2]
        if b > a and b >= c:  # else no peak here: keep what the lower multiples said
            period = (peak + 0.5 * (a - c) / (a - 2 * b + c)) / multiple
    return period


def _peaks(curve: np.ndarray) -> list[float]:
    lags = np.arange(int(RATE * 60 / _FASTEST), int(RATE * 60 / _SLOWEST) + 2)
    comb = _at(curve, lags) + _at(curve, 2 * lags) + _at(curve, 4 * lags)
    inner = (comb[1:-1] > comb[:-2]) & (comb[1:-1] >= comb[2:])
    found = np.flatnonzero(inner) + 1
    return [float(lags[i]) for i in found[np.argsort(-comb[found])][:_PEAKS]]


def candidates(periodicity: np.ndarray) -> np.ndarray:
    """Possible tempi in beats per minute: the best peaks and their simple multiples."""
    curve = periodicity[_ALL]
    tempi: list[float] = []
    for peak in _peaks(curve):
        for relative in _RELATIVES:
            bpm = 60 * RATE / _refined(curve, peak * relative)
            if _SLOWEST <= bpm <= _FASTEST and all(abs(bpm / other - 1) > _SAME for other in tempi):
                tempi.append(bpm)
    return np.array(tempi)


def features(periodicity: np.ndarray, tempi: np.ndarray) -> np.ndarray:
    """What speaks for each candidate, a candidate a row.

    The looks come once plain and once times the candidate's octave: what a backbeat looks like
    at 60 beats per minute is what its half looks like at 120.
    """
    period = 60 * RATE / tempi
    looks = [_at(periodicity[curve], period * multiple) for curve, multiple in _LOOKS]
    octaves = np.log2(tempi / _MIDDLE_BPM)
    beyond = [np.maximum(octaves - _COMFORT_OCTAVES, 0), np.maximum(-octaves - _COMFORT_OCTAVES, 0)]
    tilted = [look * octaves for look in looks]
    return np.stack([*looks, octaves, octaves**2, np.abs(octaves) ** 3, *beyond, *tilted], axis=1)


def decide(periodicity: np.ndarray, weights: np.ndarray, seconds: float) -> float | None:
    """Beats per minute, or None when the recording is too short or has no pulse."""
    if seconds < MINIMUM_SECONDS:
        return None
    tempi = candidates(periodicity)
    if len(tempi) == 0:
        return None
    return float(tempi[int(np.argmax(features(periodicity, tempi) @ weights))])
