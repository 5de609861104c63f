# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Note strengths folded into pitch classes: a treble and a bass chroma per frame."""

from __future__ import annotations

from dataclasses import dataclass

import numpy as np

from .notes import COUNT, LOWEST_NOTE

_TREBLE = (48, 96)
_BASS = (28, 55)
_LOUD_PERCENTILE = 90


@dataclass(frozen=True)
class Chroma:
    """Frames by pitch class, and how much each frame counts (0..1, quiet frames little)."""

    treble: np.ndarray
    bass: np.ndarray
    weight: np.ndarray


def _folding(lowest: int, highest: int) -> np.ndarray:
    matrix = np.zeros((COUNT, 12), np.float32)
    for note in range(lowest, highest + 1):
        matrix[note - LOWEST_NOTE, note % 12] = 1
    return matrix


_FOLD = np.hstack([_folding(*_TREBLE), _folding(*_BASS)])


def fold(roots: np.ndarray) -> Chroma:
    """`roots`: square roots of note activations, a frame a row."""
    roots = roots.astype(np.float32)
    strength = np.einsum("tn,tn->t", roots, roots)
    loud = float(np.percentile(strength, _LOUD_PERCENTILE)) if len(strength) else 0.0
    folded = roots @ _FOLD
    return Chroma(folded[:, :12], folded[:, 12:], np.sqrt(np.clip(strength / max(loud, 1e-9), 0, 1)))
