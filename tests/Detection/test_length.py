# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Three hours in bounded memory: what is kept grows by less than a thousand bytes a second."""

import tracemalloc
import unittest

import support
from support import RATE, np
from tonvale_keys import analysis, note_track, onsets, weights

BLOCK = 1 << 15


class CheapFrontEnd:
    """Spectra cost minutes over three hours; a fixed spectrum a frame keeps the test quick."""

    def __init__(self) -> None:
        spectrum = note_track.magnitudes(support.song(7, False)[None, :8192])
        self.spectrum, self.largest = spectrum, 0

    def magnitudes(self, frames: np.ndarray) -> np.ndarray:
        self.largest = max(self.largest, len(frames))
        return np.repeat(self.spectrum, len(frames), axis=0)

    def levels(self, frames: np.ndarray) -> np.ndarray:
        return np.zeros((len(frames), onsets._BAND_COUNT), np.float32)


def three_hours():
    block = support.song(7, False)[:BLOCK]
    for _ in range(3 * 3600 * RATE // BLOCK):
        yield block


class LengthTest(unittest.TestCase):
    def setUp(self):
        self.cheap = CheapFrontEnd()
        for module, name, replacement in ((note_track, "magnitudes", self.cheap.magnitudes),
                                          (onsets, "_levels", self.cheap.levels)):
            self.addCleanup(setattr, module, name, getattr(module, name))
            setattr(module, name, replacement)

    def test_three_hours_are_read_block_by_block(self):
        tracemalloc.start()
        self.addCleanup(tracemalloc.stop)
        tracks = analysis.collect(three_hours())
        kept, peak = tracemalloc.get_traced_memory()
        self.assertAlmostEqual(tracks.seconds, 3 * 3600, delta=4)
        self.assertLessEqual(self.cheap.largest, BLOCK // 4096 + 1)
        self.assertLess(kept / tracks.seconds, 1000)
        self.assertLess(peak, 24 << 20)
        found = analysis.answer(tracks, weights.load())
        self.assertTrue(0 <= found["keyConfidence"] <= 1)
        self.assertLess(tracemalloc.get_traced_memory()[1], 48 << 20)


if __name__ == "__main__":
    unittest.main()
