# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fits the two softmax models: keys (shared weights, rotated features) and tempo candidates."""

from __future__ import annotations

import numpy as np
from scipy.optimize import minimize

import shipped  # noqa: F401
from tonvale_keys import tempo_decision

_ITERATIONS = 120


def rotations(features: np.ndarray) -> np.ndarray:
    """songs x 12 tonics x values: each song's features seen from each tonic."""
    turned = [np.roll(features, -tonic, axis=2).reshape(len(features), -1) for tonic in range(12)]
    return np.stack(turned, axis=1).astype(np.float32)


def block_scales(features: np.ndarray) -> np.ndarray:
    """Per block, the inverse root of its values' deviation.

    Halfway between raw features, where a regularizer silences small blocks, and standardized ones,
    where it lets rare chord changes speak as loudly as the chroma.
    """
    return (features.std(axis=(0, 2)) + 1e-4) ** -0.5


def key_scores(turned: np.ndarray, parameters: np.ndarray) -> np.ndarray:
    """songs x 24; `parameters` is the major weights, the minor weights, the minor bias."""
    size = turned.shape[2]
    weights = parameters[: 2 * size].reshape(2, size).astype(np.float32)
    scores = turned @ weights.T
    return np.concatenate([scores[:, :, 0], scores[:, :, 1] + np.float32(parameters[-1])], axis=1).astype(np.float64)


def _log_softmax(scores: np.ndarray) -> np.ndarray:
    scores = scores - scores.max(axis=1, keepdims=True)
    return scores - np.log(np.exp(scores).sum(axis=1, keepdims=True))


def fit_key(turned: np.ndarray, keys: np.ndarray, weight: np.ndarray, l2: float,
            start: np.ndarray | None = None) -> np.ndarray:
    """L2-regularized multinomial logistic regression by L-BFGS; `weight` is per recording."""
    size = turned.shape[2]

    def loss(parameters: np.ndarray) -> tuple[float, np.ndarray]:
        logs = _log_softmax(key_scores(turned, parameters))
        value = -np.sum(weight * logs[np.arange(len(keys)), keys])
        error = np.exp(logs)
        error[np.arange(len(keys)), keys] -= 1
        error = (error * weight[:, None]).astype(np.float32)
        gradient = np.empty_like(parameters)
        flat = turned.reshape(-1, size)
        gradient[:size] = error[:, :12].reshape(-1) @ flat
        gradient[size : 2 * size] = error[:, 12:].reshape(-1) @ flat
        gradient[-1] = error[:, 12:].sum()
        gradient[:-1] += l2 * parameters[:-1]
        return value + 0.5 * l2 * np.sum(parameters[:-1] ** 2), gradient

    first = np.zeros(2 * size + 1) if start is None else start
    return minimize(loss, first, jac=True, method="L-BFGS-B", options={"maxiter": _ITERATIONS}).x


def fit_temperature(scores: np.ndarray, keys: np.ndarray) -> float:
    """The softmax temperature with the best likelihood on songs the scores were not trained on."""
    grid = np.geomspace(0.4, 4, 60)
    likelihood = [np.mean(_log_softmax(scores / t)[np.arange(len(keys)), keys]) for t in grid]
    return float(grid[int(np.argmax(likelihood))])


def tempo_example(periodicity: np.ndarray, bpm: float) -> tuple[np.ndarray, np.ndarray] | None:
    """Candidate features and which candidates are right; None when none is."""
    tempi = tempo_decision.candidates(periodicity)
    if len(tempi) == 0:
        return None
    right = np.abs(tempi / bpm - 1) <= 0.04
    return (tempo_decision.features(periodicity, tempi), right) if right.any() else None


def fit_tempo(examples: list[tuple[float, np.ndarray, np.ndarray]], l2: float) -> np.ndarray:
    """Softmax over each song's candidates; the probability of all right ones together counts.

    An example is a weight, the candidates' features and which candidates are right.
    """

    def loss(weights: np.ndarray) -> tuple[float, np.ndarray]:
        value, gradient = 0.5 * l2 * np.sum(weights**2), l2 * weights
        for count, features, right in examples:
            scores = features @ weights
            powers = np.exp(scores - scores.max())
            share, good = powers / powers.sum(), powers[right] / powers[right].sum()
            value -= count * np.log(share[right].sum() + 1e-12)
            gradient = gradient + count * (share @ features - good @ features[right])
        return value, gradient

    return minimize(loss, np.zeros(tempo_decision.FEATURES), jac=True, method="L-BFGS-B",
                    options={"maxiter": _ITERATIONS}).x
