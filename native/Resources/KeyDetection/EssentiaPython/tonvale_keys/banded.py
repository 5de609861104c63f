# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Products with matrices whose columns are zero but for a narrow, moving band."""

from __future__ import annotations

from collections.abc import Iterable

import numpy as np

# Neighbouring columns multiplied together: few enough to skip most zeros, enough to keep calls rare.
GROUP = 16


class BandedMatrix:
    """Multiplies rows by the matrix, a group of columns at a time, leaving out what is zero.

    Debian's plain BLAS makes a dense product the most expensive step of the whole analysis.
    """

    def __init__(self, groups: Iterable[tuple[slice, np.ndarray]]) -> None:
        self.groups = [(span, np.ascontiguousarray(weights, np.float32)) for span, weights in groups]

    @classmethod
    def of(cls, matrix: np.ndarray) -> BandedMatrix:
        groups = []
        for start in range(0, matrix.shape[1], GROUP):
            part = matrix[:, start : start + GROUP]
            used = np.flatnonzero(part.any(axis=1))
            span = slice(int(used[0]), int(used[-1]) + 1)
            groups.append((span, part[span]))
        return cls(groups)

    def apply(self, rows: np.ndarray) -> np.ndarray:
        return np.concatenate([rows[:, span] @ weights for span, weights in self.groups], axis=1)
