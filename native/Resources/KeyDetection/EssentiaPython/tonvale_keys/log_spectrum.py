# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Spectra on a logarithmic frequency axis, three bins per semitone, whitened."""

from __future__ import annotations

import numpy as np

from .banded import GROUP, BandedMatrix
from .decoding import SAMPLE_RATE
from .spectrum import CONCERT_A, LENGTH

BINS_PER_SEMITONE = 3
LOWEST_NOTE, HIGHEST_NOTE = 27, 113
CENTRES = np.arange(LOWEST_NOTE, HIGHEST_NOTE + 1 / 6, 1 / BINS_PER_SEMITONE)  # in MIDI notes
_WHITENING_BINS = 37  # half an octave to either side


def _group(centre: np.ndarray, width: np.ndarray) -> tuple[slice, np.ndarray]:
    """The linear bins that a few logarithmic bins need, and their raised-cosine weights, each column summing to 1."""
    span = slice(int(centre[0] - width[0]), min(LENGTH // 2 + 1, int(centre[-1] + width[-1]) + 2))
    distance = (np.arange(span.start, span.stop)[:, None] - centre) / width
    weights = np.where(np.abs(distance) < 1, 1 + np.cos(np.pi * distance), 0)
    return span, (weights / np.maximum(weights.sum(axis=0), 1e-9)).astype(np.float32)


def frequency_map(cents: float) -> BandedMatrix:
    """The map from linear to logarithmic spectra for one tuning."""
    hz = CONCERT_A * 2 ** ((CENTRES - 69 + cents / 100) / 12)
    centre = np.minimum(hz * LENGTH / SAMPLE_RATE, LENGTH // 2)  # the last bins may pass half the rate
    width = np.maximum(1.0, centre * (2 ** (1 / 36) - 1))
    parts = [slice(start, start + GROUP) for start in range(0, len(CENTRES), GROUP)]
    return BandedMatrix(_group(centre[part], width[part]) for part in parts)


def _running_mean_matrix() -> np.ndarray:
    """Hamming-weighted running mean as a matrix; the ends are reflected."""
    count, half = len(CENTRES), _WHITENING_BINS // 2
    window = np.hamming(_WHITENING_BINS)
    index = np.abs(np.arange(count)[:, None] + np.arange(-half, half + 1)[None])
    index = np.where(index >= count, 2 * (count - 1) - index, index)
    matrix = np.zeros((count, count))
    np.add.at(matrix, (index, np.arange(count)[:, None]), window / window.sum())
    return matrix


_RUNNING_MEAN = BandedMatrix.of(_running_mean_matrix())


def whiten(log_spectra: np.ndarray) -> np.ndarray:
    """What stands out of its surroundings, divided by the root of their deviation.

    Evens out the tone colour of instruments and recordings (Mauch & Dixon, ISMIR 2010).
    """
    mean = _RUNNING_MEAN.apply(log_spectra)
    variance = _RUNNING_MEAN.apply(np.square(log_spectra)) - np.square(mean)
    deviation = np.sqrt(np.maximum(variance, 0))
    return np.maximum(log_spectra - mean, 0) / np.sqrt(deviation + np.float32(1e-9))
