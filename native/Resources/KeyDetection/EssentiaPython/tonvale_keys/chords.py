# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The most likely chord of each frame: template matching and Viterbi decoding."""

from __future__ import annotations

import numpy as np

from .chroma import Chroma

MAJOR, MINOR, DIMINISHED = 0, 1, 2  # a chord's number is 12 * quality + root
_INTERVALS = ((0, 4, 7), (0, 3, 7), (0, 3, 6))
_BASS_BONUS = 0.12  # a triad whose root is in the bass
_DIMINISHED_PENALTY = 0.06  # rare, and a subset of dominant sevenths
_SCALE = 12.0
_CHANGE_COST = 2.8


def _templates() -> np.ndarray:
    rows = np.zeros((36, 12), np.float32)
    for quality, intervals in enumerate(_INTERVALS):
        for root in range(12):
            rows[12 * quality + root, [(root + step) % 12 for step in intervals]] = 1 / np.sqrt(3)
    return rows


_TEMPLATES = _templates()


def scores(chroma: Chroma) -> np.ndarray:
    """Log-like score of each of the 36 chords in each frame."""
    length = np.linalg.norm(chroma.treble, axis=1, keepdims=True)
    match = chroma.treble / (length + np.float32(1e-6)) @ _TEMPLATES.T
    bass = chroma.bass / (chroma.bass.max(axis=1, keepdims=True) + np.float32(1e-6))
    match[:, :24] += np.float32(_BASS_BONUS) * np.hstack([bass, bass])
    match[:, 24:] -= _DIMINISHED_PENALTY
    return np.float32(_SCALE) * match


def decode(frame_scores: np.ndarray) -> np.ndarray:
    """The best path when staying is free and any change costs the same."""
    count = len(frame_scores)
    if count == 0:
        return np.zeros(0, np.int16)
    stays = np.zeros(frame_scores.shape, bool)
    best_before = np.zeros(count, np.int16)
    total = frame_scores[0].copy()
    for frame in range(1, count):
        best = int(total.argmax())
        change = total[best] - np.float32(_CHANGE_COST)
        best_before[frame] = best
        np.greater_equal(total, change, out=stays[frame])
        total = np.maximum(total, change) + frame_scores[frame]
    path = np.empty(count, np.int16)
    path[-1] = total.argmax()
    for frame in range(count - 1, 0, -1):
        chord = path[frame]
        path[frame - 1] = chord if stays[frame, chord] else best_before[frame]
    return path
