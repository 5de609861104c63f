# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""How good answers are: MIREX key score, tempo accuracies, Brier score, reliability bins."""

from __future__ import annotations

import numpy as np

_TEMPO_TOLERANCE = 0.04
_OCTAVES = (1, 2, 3, 1 / 2, 1 / 3)
_BIN_EDGES = (0, 0.3, 0.5, 0.6, 0.7, 0.8, 0.9, 0.95, 1.001)


def mirex(found: int, true: int) -> float:
    """1 exact, 0.5 a fifth off, 0.3 relative, 0.2 parallel (MIREX audio key detection task)."""
    if found == true:
        return 1.0
    apart, same_mode = (found - true) % 12, found // 12 == true // 12
    if same_mode:
        return 0.5 if apart in (5, 7) else 0.0
    if apart == (9 if true < 12 else 3):
        return 0.3
    return 0.2 if apart == 0 else 0.0


def key_row(found: np.ndarray, true: np.ndarray, confidence: np.ndarray) -> dict[str, float]:
    hit = found == true
    return {"songs": len(true), "mirex": float(np.mean([mirex(f, t) for f, t in zip(found, true)])),
            "accuracy": float(hit.mean()), "brier": float(np.mean((confidence - hit) ** 2))}


def reliability(confidence: np.ndarray, hit: np.ndarray) -> list[tuple[float, float, int, float, float]]:
    """Per bin: edges, songs, mean confidence and the share that was right."""
    rows = []
    for low, high in zip(_BIN_EDGES, _BIN_EDGES[1:]):
        inside = (confidence >= low) & (confidence < high)
        if inside.any():
            rows.append((low, min(high, 1.0), int(inside.sum()), float(confidence[inside].mean()),
                         float(hit[inside].mean())))
    return rows


def tempo_hits(found: float | None, true: float) -> tuple[bool, bool]:
    """Accuracy1: within 4 %; Accuracy2: also at 2, 3, 1/2 or 1/3 of the tempo."""
    if found is None:
        return False, False
    close = [abs(found / (true * octave) - 1) <= _TEMPO_TOLERANCE for octave in _OCTAVES]
    return close[0], any(close)


def interval(share: float, count: int) -> tuple[float, float]:
    """95 % score interval of a proportion (Wilson 1927)."""
    z = 1.96
    centre = (share + z * z / (2 * count)) / (1 + z * z / count)
    half = z / (1 + z * z / count) * np.sqrt(share * (1 - share) / count + z * z / (4 * count * count))
    return float(centre - half), float(centre + half)
