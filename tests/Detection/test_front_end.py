# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Framing, spectrum, tuning, logarithmic spectrum, whitening and note activations on synthetic signals."""

import unittest

import support
from support import RATE, np, tone
from tonvale_keys import log_spectrum, notes, spectrum
from tonvale_keys.banded import BandedMatrix
from tonvale_keys.framing import FrameCutter
from tonvale_keys.note_track import NoteTrack


def spectra_of(audio: np.ndarray) -> np.ndarray:
    return spectrum.magnitudes(FrameCutter(spectrum.LENGTH, spectrum.HOP).cut(audio))


class FramingTest(unittest.TestCase):
    def test_frames_do_not_depend_on_block_sizes(self):
        audio = np.arange(1000, dtype=np.float32)
        whole = FrameCutter(100, 30).cut(audio)
        cutter = FrameCutter(100, 30)
        pieces = [cutter.cut(block).copy() for block in np.split(audio, [1, 2, 99, 100, 101, 350, 351, 999])]
        np.testing.assert_array_equal(np.concatenate(pieces), whole)

    def test_half_a_frame_at_the_end_is_padded_and_less_is_dropped(self):
        cutter = FrameCutter(100, 50)
        cutter.cut(np.ones(120, np.float32))
        self.assertEqual(cutter.finish().sum(), 70)
        cutter = FrameCutter(100, 100)
        cutter.cut(np.ones(149, np.float32))
        self.assertEqual(len(cutter.finish()), 0)


class SpectrumTest(unittest.TestCase):
    def test_full_scale_sine_peaks_at_one_in_its_bin(self):
        bin_index = 300
        audio = np.sin(2 * np.pi * bin_index * np.arange(spectrum.LENGTH) / spectrum.LENGTH).astype(np.float32)
        found = spectra_of(audio)[0]
        self.assertEqual(int(found.argmax()), bin_index)
        self.assertAlmostEqual(float(found.max()), 1.0, delta=0.01)

    def test_tuning_is_found_within_two_cents(self):
        for cents in (-45, -20, 0, 13, 40):
            tuning = spectrum.Tuning()
            tuning.add(spectra_of(np.concatenate([tone(pitch + cents / 100, 1.0) for pitch in (57, 60, 64, 69)])))
            self.assertAlmostEqual(tuning.cents(), cents, delta=2.0)

    def test_silence_is_in_tune(self):
        tuning = spectrum.Tuning()
        tuning.add(spectra_of(np.zeros(RATE * 2, np.float32)))
        self.assertEqual(tuning.cents(), 0.0)


class BandedTest(unittest.TestCase):
    def test_equals_the_dense_product(self):
        seed = 2
        print(f"seed {seed}", end=" ")
        rng = np.random.default_rng(seed)
        rows, columns = np.mgrid[:60, :45]
        matrix = np.where(abs(rows - 1.3 * columns) < 4, rng.normal(size=(60, 45)), 0).astype(np.float32)
        values = rng.normal(size=(7, 60)).astype(np.float32)
        np.testing.assert_allclose(BandedMatrix.of(matrix).apply(values), values @ matrix, atol=1e-5)


class LogSpectrumTest(unittest.TestCase):
    def test_a_sine_lands_on_its_note_when_the_tuning_is_known(self):
        for cents in (-30, 0, 30):
            hz = 440 * 2 ** (cents / 1200)
            audio = np.sin(2 * np.pi * hz * np.arange(RATE) / RATE).astype(np.float32)
            row = log_spectrum.frequency_map(cents).apply(spectra_of(audio))[0]
            self.assertAlmostEqual(log_spectrum.CENTRES[row.argmax()], 69, places=6)

    def test_each_bin_is_a_mean_of_its_surroundings(self):
        rows = log_spectrum.frequency_map(17).apply(np.ones((1, spectrum.LENGTH // 2 + 1), np.float32))
        np.testing.assert_allclose(rows, 1, atol=1e-5)

    def test_whitening_keeps_peaks_and_removes_level_plains(self):
        rows = np.full((1, len(log_spectrum.CENTRES)), 0.1, np.float32)
        rows[0, 100] = 1
        white = log_spectrum.whiten(rows)[0]
        self.assertEqual(int(white.argmax()), 100)
        self.assertAlmostEqual(float(np.delete(white, 100).max()), 0, delta=1e-3)


class NotesTest(unittest.TestCase):
    def test_a_chord_is_told_from_its_overtones(self):
        pitches = (48, 64, 67)
        track = NoteTrack()
        track.add(sum(tone(pitch, 4.0) for pitch in pitches))
        strength = track.finish().astype(np.float32).mean(axis=0)
        found = sorted(int(i) + notes.LOWEST_NOTE for i in np.argsort(-strength)[:3])
        self.assertEqual(found, sorted(pitches))

    def test_block_sizes_do_not_matter(self):
        audio = support.song(2, False, repeats=1)
        whole, split = NoteTrack(), NoteTrack()
        whole.add(audio)
        for start in range(0, len(audio), 999):
            split.add(audio[start : start + 999])
        np.testing.assert_allclose(split.finish().astype(float), whole.finish().astype(float), atol=2e-3)


if __name__ == "__main__":
    unittest.main()
