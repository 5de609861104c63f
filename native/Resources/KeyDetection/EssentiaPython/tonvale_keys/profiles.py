# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Correlation with the published Aarden-Essen key profiles, over the song's windows.

B. Aarden, "Dynamic melodic expectancy", dissertation, Ohio State University, 2003: how often each
degree of the scale occurs in folk songs of the Essen collection.
"""

from __future__ import annotations

import numpy as np

from .chroma import Chroma

_MAJOR = (17.7661, 0.145624, 14.9265, 0.160186, 19.8049, 11.3587, 0.291248, 22.062, 0.145624, 8.15494, 0.232998,
          4.95122)
_MINOR = (18.2648, 0.737619, 14.0499, 16.8599, 0.702494, 14.4362, 0.702494, 18.6161, 4.56621, 1.93186, 7.37619,
          1.75623)
_WINDOW_FRAMES, _WINDOW_HOP = 32, 8  # 12 s, every 3 s
_GAIN = 12.0


def _standardized(rows: np.ndarray) -> np.ndarray:
    rows = rows - rows.mean(axis=-1, keepdims=True)
    return rows / (np.linalg.norm(rows, axis=-1, keepdims=True) + 1e-9)


_PROFILES = _standardized(np.array([np.roll(profile, tonic) for profile in (_MAJOR, _MINOR) for tonic in range(12)]))


def correlations(pitch_classes: np.ndarray) -> np.ndarray:
    """Pearson correlation of each row with the 24 keys, majors first."""
    return _standardized(pitch_classes) @ _PROFILES.T


def _windows(chroma: Chroma) -> np.ndarray:
    """Weighted mean treble of each window, from a running sum."""
    weighted = chroma.treble * chroma.weight[:, None]
    sums = np.vstack([np.zeros((1, 12)), np.cumsum(weighted, axis=0, dtype=np.float64)])
    starts = np.arange(0, max(1, len(weighted) - _WINDOW_FRAMES + 1), _WINDOW_HOP)
    return sums[np.minimum(starts + _WINDOW_FRAMES, len(weighted))] - sums[starts]


def window_votes(chroma: Chroma) -> tuple[np.ndarray, np.ndarray]:
    """Of 24 keys: the share of windows each wins, and its mean softmax."""
    match = correlations(_windows(chroma))
    wins = np.bincount(match.argmax(axis=1), minlength=24) / len(match)
    soft = np.exp(_GAIN * (match - match.max(axis=1, keepdims=True)))
    return wins, (soft / soft.sum(axis=1, keepdims=True)).mean(axis=0)
