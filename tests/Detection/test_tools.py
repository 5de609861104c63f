# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The training tools' own arithmetic: MIDI files, composing, scores. Needs no synthesizer."""

import random
import sys
import tempfile
import unittest
from pathlib import Path

import support

sys.path.insert(0, str(support.ROOT / "tools/detection"))

import compose  # noqa: E402
import metrics  # noqa: E402
import midi_file  # noqa: E402
import progressions  # noqa: E402
import variation  # noqa: E402
import voice  # noqa: E402
from support import np  # noqa: E402


class MidiTest(unittest.TestCase):
    def test_file_survives_a_round_trip(self):
        song, _, _ = compose.compose("jazz", 5)
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "song.mid"
            midi_file.write(song, path)
            again = midi_file.read(path)
        for before, after in zip(song.tracks, again.tracks, strict=True):
            self.assertEqual(midi_file.notes_of(before), midi_file.notes_of(after))
        self.assertEqual(midi_file.seconds_per_tick(song), midi_file.seconds_per_tick(again))

    def test_variation_moves_every_note_but_the_drums(self):
        song, _, _ = compose.compose("country", 12)
        seed = 4
        print(f"seed {seed}", end=" ")
        varied, change = variation.vary(song, random.Random(seed))
        for before, after in zip(song.tracks, varied.tracks):
            step = 0 if midi_file.channel_of(before) == midi_file.DRUM_CHANNEL else change.semitones
            self.assertEqual([n.pitch + step for n in midi_file.notes_of(before)],
                             [n.pitch for n in midi_file.notes_of(after)])
        ratio = midi_file.seconds_per_tick(song) / midi_file.seconds_per_tick(varied)
        self.assertAlmostEqual(ratio, change.tempo, places=4)


class ComposeTest(unittest.TestCase):
    def test_chord_symbols(self):
        self.assertEqual(progressions.chord("V7", False), progressions.Chord(7, (0, 4, 7, 10)))
        self.assertEqual(progressions.chord("V7/ii", False).root, 9)
        self.assertEqual(progressions.chord("bVII", False).root, 10)
        self.assertEqual(progressions.chord("VI", True).root, 8)
        self.assertEqual(progressions.chord("iih7", True), progressions.Chord(2, (0, 3, 6, 10)))

    def test_every_style_composes_the_same_piece_for_the_same_seed(self):
        for genre in compose.STYLES:
            first, second = compose.compose(genre, 8), compose.compose(genre, 8)
            self.assertEqual(first, second)
            self.assertIn(first[1], range(24))

    def test_sung_line_is_bounded(self):
        notes = [midi_file.Note(0, 400, 60, 90), midi_file.Note(480, 900, 64, 90)]
        line = voice.sing(notes, 0.001, 11025, 11025, np.random.default_rng(1))
        self.assertEqual(len(line), 11025)
        self.assertLessEqual(float(np.abs(line).max()), 1.0)


class MetricsTest(unittest.TestCase):
    def test_mirex_weights(self):
        c, g, f, a_minor, c_minor, d = 0, 7, 5, 21, 12, 2
        self.assertEqual([metrics.mirex(k, c) for k in (c, g, f, a_minor, c_minor, d)], [1, 0.5, 0.5, 0.3, 0.2, 0])
        self.assertEqual(metrics.mirex(c, a_minor), 0.3)

    def test_tempo_accuracies(self):
        self.assertEqual(metrics.tempo_hits(103, 100), (True, True))
        self.assertEqual(metrics.tempo_hits(199, 100), (False, True))
        self.assertEqual(metrics.tempo_hits(150, 100), (False, False))
        self.assertEqual(metrics.tempo_hits(None, 100), (False, False))

    def test_interval_contains_the_share(self):
        low, high = metrics.interval(0.9, 100)
        self.assertTrue(0.82 < low < 0.9 < high < 0.95)


if __name__ == "__main__":
    unittest.main()
