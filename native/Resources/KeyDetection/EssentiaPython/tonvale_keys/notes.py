# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Which notes sound: non-negative least squares against a dictionary of harmonic tones.

Mauch & Dixon, "Approximate note transcription for the improved identification of difficult chords",
ISMIR 2010, with multiplicative updates (Lee & Seung 1999).
"""

from __future__ import annotations

import numpy as np

from .log_spectrum import CENTRES

LOWEST_NOTE, HIGHEST_NOTE = 28, 100
COUNT = HIGHEST_NOTE - LOWEST_NOTE + 1
_HARMONICS = 12
_HARMONIC_DECAY = 0.7
_WIDTH_SEMITONES = 0.38
_UPDATES = 15


def _dictionary() -> np.ndarray:
    """One tone per row: harmonics of falling amplitude, each a Gaussian on the logarithmic axis."""
    pitch = np.arange(LOWEST_NOTE, HIGHEST_NOTE + 1)
    tones = np.zeros((COUNT, len(CENTRES)))
    for harmonic in range(1, _HARMONICS + 1):
        at = pitch + 12 * np.log2(harmonic)
        distance = (CENTRES[None] - at[:, None]) / _WIDTH_SEMITONES
        tones += _HARMONIC_DECAY ** (harmonic - 1) * np.exp(-0.5 * distance**2)
    return tones.astype(np.float32)


_TONES = _dictionary()
_PRODUCTS = _TONES @ _TONES.T


def activations(whitened: np.ndarray) -> np.ndarray:
    """Strength of each note in each frame."""
    target = whitened @ _TONES.T
    found = target.copy()
    for _ in range(_UPDATES):
        found *= target / (found @ _PRODUCTS + np.float32(1e-9))
    return found
