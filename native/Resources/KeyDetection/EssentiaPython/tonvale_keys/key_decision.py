# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Chooses among the 24 keys: a multinomial logistic regression that is exactly transposition-invariant.

For each tonic the features are rotated so that the tonic comes first; the same two weight vectors,
one per mode, then score all twelve.
"""

from __future__ import annotations

import numpy as np

# Spelled with the fewer accidentals in the key signature, among the accepted key words.
MAJOR_NAMES = ("C", "Db", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B")
MINOR_NAMES = ("C", "C#", "D", "Eb", "E", "F", "F#", "G", "G#", "A", "Bb", "B")


def logits(features: np.ndarray, major: np.ndarray, minor: np.ndarray, minor_bias: float) -> np.ndarray:
    """Scores of the 24 keys, majors first; `features`, `major` and `minor` are blocks x 12."""
    scores = np.empty(24)
    for tonic in range(12):
        rotated = np.roll(features, -tonic, axis=1)
        scores[tonic] = np.vdot(rotated, major)
        scores[12 + tonic] = np.vdot(rotated, minor) + minor_bias
    return scores


def name(key: int) -> tuple[str, str]:
    """The key word and the scale word of key 0..23."""
    return (MAJOR_NAMES[key], "major") if key < 12 else (MINOR_NAMES[key - 12], "minor")
