# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Cross-validation by song: no version or arrangement of a song is scored by weights that heard it."""

from __future__ import annotations

import zlib

import numpy as np

import fitting
import shipped  # noqa: F401
from recordings import Item
from tonvale_keys import tempo_decision

FOLDS = 10
KEY_L2 = 10.0  # on features scaled by fitting.block_scales()
TEMPO_L2 = 0.1
VARIED_WEIGHT = 0.5  # of a varied recording, against 1 for a plain one
COMPOSED_WEIGHT = 0.25
COMPOSED_TEMPO_WEIGHT = 0.3


def is_composed(item: Item) -> bool:
    return item.label["song"] is None


def folds_of(items: list[Item]) -> np.ndarray:
    """Fold of each recording by its song; -1 = composed, always trained on and never scored."""
    return np.array([-1 if is_composed(item) else zlib.crc32(b"song %d" % item.label["song"]) % FOLDS
                     for item in items])


def recording_weights(items: list[Item]) -> np.ndarray:
    return np.array([COMPOSED_WEIGHT if is_composed(item) else 1.0 if item.label["version"] == 0 else VARIED_WEIGHT
                     for item in items])


def scaled_rotations(items: list[Item]) -> tuple[np.ndarray, np.ndarray]:
    """The training form of the features, and the scale of each block that went into it."""
    features = np.stack([item.features for item in items])
    scales = fitting.block_scales(features)
    return fitting.rotations(features * scales[None, :, None]), scales


def key_scores(items: list[Item], l2: float = KEY_L2) -> np.ndarray:
    """Scores of the 24 keys for each recording, by the weights of the folds it is not in."""
    turned, _ = scaled_rotations(items)
    keys, weight, fold = np.array([item.key for item in items]), recording_weights(items), folds_of(items)
    scores, start = np.full((len(items), 24), np.nan), None
    for out in range(FOLDS):
        train, test = fold != out, fold == out
        if test.any():
            start = fitting.fit_key(turned[train], keys[train], weight[train], l2, start)
            scores[test] = fitting.key_scores(turned[test], start)
    return scores


def tempo_examples(items: list[Item]) -> list[tuple[np.ndarray, np.ndarray] | None]:
    return [fitting.tempo_example(item.periodicity, item.label["bpm"]) if item.label["bpm"] else None
            for item in items]


def tempo_weights(items: list[Item]) -> np.ndarray:
    """Which octave of a composed piece is its tempo was the composer's choice, so it counts less."""
    return np.array([COMPOSED_TEMPO_WEIGHT if is_composed(item) else weight
                     for item, weight in zip(items, recording_weights(items))])


def fit_tempo(examples: list, weight: np.ndarray, chosen: np.ndarray, l2: float = TEMPO_L2) -> np.ndarray:
    used = [(weight[index], *examples[index]) for index in chosen if examples[index] is not None]
    return fitting.fit_tempo(used, l2)


def tempi(items: list[Item], l2: float = TEMPO_L2) -> list[float | None]:
    """The tempo found in each recording by the weights of the folds it is not in."""
    fold, examples, weight = folds_of(items), tempo_examples(items), tempo_weights(items)
    found: list[float | None] = [None] * len(items)
    for out in range(FOLDS):
        weights = fit_tempo(examples, weight, np.flatnonzero(fold != out), l2)
        for index in np.flatnonzero(fold == out):
            found[index] = tempo_decision.decide(items[index].periodicity, weights, items[index].seconds)
    return found
