# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the key decision looks at: blocks of twelve values, each by pitch class.

Every block is a plain distribution over pitch classes or chord roots, so that rotating it is
the same as transposing the song.
"""

from __future__ import annotations

import numpy as np

from . import chords, profiles
from .chroma import Chroma

BLOCKS = 82
_BEGINNING_SHARE = 0.12  # of a song; both state its key
_END_SHARE = 0.10
_LAST_FRAMES = 6
_SOUNDING_WEIGHT = 0.2
_LONG_CHORD_FRAMES = 4
# Goal-directed chord changes: (quality before, quality of the goal, roots apart); None = either.
_CADENCES = ((chords.MAJOR, chords.MAJOR, 7), (chords.MAJOR, chords.MINOR, 7), (None, chords.MAJOR, 5),
             (None, chords.MINOR, 5), (chords.MAJOR, None, 10), (chords.MAJOR, None, 8))


def _share(values: np.ndarray) -> np.ndarray:
    return values / (values.sum() + 1e-9)


def _weighted_mean(chroma: np.ndarray, weight: np.ndarray) -> np.ndarray:
    return _share(weight @ chroma)


def _centred_log(share: np.ndarray) -> np.ndarray:
    logs = np.log(share + 1e-3)
    return logs - logs.mean()


def _part_means(chroma: Chroma) -> list[np.ndarray]:
    """Mean treble and bass of the whole, the end, the beginning and the last sounding frames."""
    count = len(chroma.weight)
    sounding = np.flatnonzero(chroma.weight > _SOUNDING_WEIGHT)
    parts = (slice(None), slice(count - max(1, int(_END_SHARE * count)), None),
             slice(0, max(1, int(_BEGINNING_SHARE * count))), sounding[-_LAST_FRAMES:])
    return [_weighted_mean(side[part], chroma.weight[part]) for part in parts
            for side in (chroma.treble, chroma.bass)]


def _distribution_blocks(chroma: Chroma) -> list[np.ndarray]:
    energy = np.sqrt(_share(chroma.weight @ np.square(chroma.treble)))
    relative = chroma.treble / (chroma.treble.max(axis=1, keepdims=True) + np.float32(1e-6))
    strongest_bass = np.bincount(chroma.bass.argmax(axis=1), chroma.weight, minlength=12)
    return [energy, _share(np.percentile(relative, 85, axis=0)), _share(strongest_bass)]


def _chord_runs(path: np.ndarray, weight: np.ndarray) -> tuple[np.ndarray, np.ndarray]:
    """Chord and length in frames of each run of equal sounding chords."""
    sounding = weight > _SOUNDING_WEIGHT
    path = path[sounding] if sounding.any() else path
    starts = np.flatnonzero(np.r_[True, path[1:] != path[:-1]])
    return path[starts], np.diff(np.r_[starts, len(path)])


def _one_hot(chord: int) -> np.ndarray:
    block = np.zeros((2, 12))
    if chord < 24:
        block[chord // 12, chord % 12] = 1
    return block


def _cadence_blocks(before: np.ndarray, after: np.ndarray) -> list[np.ndarray]:
    apart = (before - after) % 12
    blocks = []
    for quality, goal, interval in _CADENCES:
        hit = (apart == interval) & ((quality is None) | (before // 12 == (quality or 0)))
        hit &= (goal is None) | (after // 12 == (goal or 0))
        hit &= (before < 24) & (after < 24)
        blocks.append(np.bincount(after[hit] % 12, minlength=12))
    return blocks


def _transition_blocks(before: np.ndarray, after: np.ndarray) -> np.ndarray:
    """Counts by (quality, quality, interval) and root of the first chord; majors and minors only."""
    plain = (before < 24) & (after < 24)
    before, after = before[plain], after[plain]
    kind = (before // 12 * 2 + after // 12) * 12 + (after - before) % 12
    return np.bincount(kind * 12 + before % 12, minlength=48 * 12).reshape(48, 12)


def _chord_blocks(chroma: Chroma, path: np.ndarray) -> np.ndarray:
    share = _share(np.bincount(path, chroma.weight, minlength=36))
    runs, lengths = _chord_runs(path, chroma.weight)
    before, after = runs[:-1].astype(int), runs[1:].astype(int)
    changes = max(1, len(before))
    bass = chroma.bass.argmax(axis=1)
    rooted = _share(np.bincount(path[(path % 12 == bass) & (path < 24)], minlength=24))
    long = _share(np.bincount(runs[(lengths >= _LONG_CHORD_FRAMES) & (runs < 24)], minlength=24))
    return np.vstack([
        np.sqrt(share).reshape(3, 12), np.sqrt(np.array(_cadence_blocks(before, after)) / changes),
        _one_hot(int(runs[-1])), _one_hot(int(runs[0])),
        np.sqrt(_transition_blocks(before, after) / changes), rooted.reshape(2, 12), long.reshape(2, 12)])


def extract(chroma: Chroma) -> np.ndarray:
    """The song's BLOCKS x 12 features; the song must have at least one frame."""
    means = _part_means(chroma)
    path = chords.decode(chords.scores(chroma))
    wins, soft = profiles.window_votes(chroma)
    blocks = np.vstack([
        *means, *_distribution_blocks(chroma), _centred_log(means[0]), _centred_log(means[1]),
        wins.reshape(2, 12), soft.reshape(2, 12), _chord_blocks(chroma, path)])
    return blocks.astype(np.float32)
