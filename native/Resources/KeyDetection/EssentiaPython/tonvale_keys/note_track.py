# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The notes of a whole song from its blocks of samples, in memory that hardly grows with its length."""

from __future__ import annotations

import numpy as np

from . import notes
from .banded import BandedMatrix
from .framing import FrameCutter
from .log_spectrum import frequency_map, whiten
from .spectrum import FRAME_SECONDS, HOP, LENGTH, Tuning, magnitudes

# The first seconds wait for the tuning to be known; later ones are mapped as they come.
TUNING_SECONDS = 60


class NoteTrack:
    """Feed it blocks with add(); finish() gives the square roots of the note activations, a frame a row."""

    def __init__(self) -> None:
        self._cutter = FrameCutter(LENGTH, HOP)
        self._tuning = Tuning()
        self._waiting: list[np.ndarray] = []
        self._map: BandedMatrix | None = None
        self._parts: list[np.ndarray] = []

    def add(self, block: np.ndarray) -> None:
        self._add_frames(self._cutter.cut(block))

    def _add_frames(self, frames: np.ndarray) -> None:
        if len(frames) == 0:
            return
        spectra = magnitudes(frames)
        if self._map is not None:
            self._parts.append(self._roots(spectra))
            return
        self._tuning.add(spectra)
        self._waiting.append(spectra)
        if sum(map(len, self._waiting)) * FRAME_SECONDS >= TUNING_SECONDS:
            self._use_tuning()

    def _use_tuning(self) -> None:
        self._map = frequency_map(self._tuning.cents())
        while self._waiting:
            self._parts.append(self._roots(self._waiting.pop(0)))

    def _roots(self, spectra: np.ndarray) -> np.ndarray:
        """Half-precision roots: three hours stay below 5 MB."""
        return np.sqrt(notes.activations(whiten(self._map.apply(spectra)))).astype(np.float16)

    def finish(self) -> np.ndarray:
        self._add_frames(self._cutter.finish())
        if self._map is None:
            self._use_tuning()
        return np.concatenate([np.zeros((0, notes.COUNT), np.float16), *self._parts])
