# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Cuts a stream of sample blocks into overlapping frames."""

from __future__ import annotations

import numpy as np


class FrameCutter:
    """Carries what is left of one block over to the next, so frames do not depend on block sizes."""

    def __init__(self, length: int, hop: int) -> None:
        self._length = length
        self._hop = hop
        self._rest = np.zeros(0, np.float32)

    def cut(self, block: np.ndarray) -> np.ndarray:
        """All whole frames that are now complete, one a row; a read-only view."""
        samples = np.concatenate([self._rest, block])
        count = max(0, (len(samples) - self._length) // self._hop + 1)
        self._rest = samples[count * self._hop :].copy()
        if count == 0:
            return np.zeros((0, self._length), np.float32)
        step = samples.strides[0]
        return np.lib.stride_tricks.as_strided(samples, (count, self._length), (step * self._hop, step),
                                               writeable=False)

    def finish(self) -> np.ndarray:
        """The samples left over, as one frame padded with silence when they are worth half a frame."""
        if len(self._rest) * 2 < self._length:
            return np.zeros((0, self._length), np.float32)
        return np.pad(self._rest, (0, self._length - len(self._rest)))[None]
