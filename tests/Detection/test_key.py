# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Chords, features, key decision, spelling and confidence."""

import os
import tempfile
import unittest

import support
from support import np
from tonvale_keys import analysis, chords, chroma, confidence, key_decision, key_features, profiles, weights
from tonvale_keys.chroma import Chroma

ACCEPTED = set("C C# Db D D# Eb E F F# Gb G G# Ab A A# Bb B".split())


def chroma_of(triads: list[tuple[int, ...]], frames: int = 8) -> Chroma:
    treble = np.full((len(triads) * frames, 12), 0.02, np.float32)
    bass = treble.copy()
    for index, triad in enumerate(triads):
        rows = slice(index * frames, (index + 1) * frames)
        treble[rows, [pitch % 12 for pitch in triad]] = 1
        bass[rows, triad[0] % 12] = 1
    return Chroma(treble, bass, np.ones(len(treble), np.float32))


def rotated(song: Chroma, semitones: int) -> Chroma:
    return Chroma(np.roll(song.treble, semitones, 1), np.roll(song.bass, semitones, 1), song.weight)


class ChordsTest(unittest.TestCase):
    def test_triads_are_named(self):
        path = chords.decode(chords.scores(chroma_of([(0, 4, 7), (9, 0, 4), (11, 2, 5)])))
        self.assertEqual([path[4], path[12], path[20]], [0, 12 + 9, 24 + 11])

    def test_one_odd_frame_does_not_change_the_chord(self):
        scores = np.zeros((9, 36), np.float32)
        scores[:, 0] = 1
        scores[4, 5] = 2
        self.assertEqual(set(chords.decode(scores)), {0})

    def test_path_is_the_best_by_exhaustive_search(self):
        seed = 11
        print(f"seed {seed}", end=" ")
        scores = np.random.default_rng(seed).normal(0, 3, (4, 36)).astype(np.float32)
        scores[:, 4:] = -100
        paths = np.stack(np.meshgrid(*[range(4)] * 4, indexing="ij"), -1).reshape(-1, 4)
        totals = [scores[range(4), p].sum() - 2.8 * np.count_nonzero(np.diff(p)) for p in paths]
        self.assertEqual(list(chords.decode(scores)), list(paths[int(np.argmax(totals))]))

    def test_no_frames_no_chords(self):
        self.assertEqual(len(chords.decode(np.zeros((0, 36), np.float32))), 0)


class FeaturesTest(unittest.TestCase):
    song = chroma_of([(0, 4, 7), (5, 9, 0), (7, 11, 2), (0, 4, 7), (9, 0, 4), (2, 5, 9), (7, 11, 2), (0, 4, 7)])

    def test_transposing_the_song_rotates_every_block(self):
        home = key_features.extract(self.song)
        for semitones in range(1, 12):
            moved = key_features.extract(rotated(self.song, semitones))
            np.testing.assert_allclose(moved, np.roll(home, semitones, 1), atol=1e-5)

    def test_features_are_finite_for_one_frame_and_for_equal_tones(self):
        flat = Chroma(np.ones((1, 12), np.float32), np.ones((1, 12), np.float32), np.ones(1, np.float32))
        for song in (flat, chroma_of([(0, 4, 7)], 1)):
            self.assertTrue(np.isfinite(key_features.extract(song)).all())

    def test_published_profiles_know_a_plain_cadence(self):
        wins, soft = profiles.window_votes(self.song)
        self.assertEqual(int(wins.argmax()), 0)
        self.assertAlmostEqual(float(soft.sum()), 1, places=5)

    def test_quiet_frames_count_little(self):
        roots = np.zeros((10, 73), np.float16)
        roots[:, 20] = 1
        roots[5:, 20] = 0.01
        self.assertLess(chroma.fold(roots).weight[7], 0.05)


class DecisionTest(unittest.TestCase):
    def test_all_keys_of_a_synthetic_song_are_found(self):
        trained = weights.load()
        for minor in (False, True):
            confidences = []
            for tonic in range(12):
                tracks = analysis.collect([support.song(tonic, minor)])
                found = analysis.answer(tracks, trained)
                names = key_decision.MINOR_NAMES if minor else key_decision.MAJOR_NAMES
                self.assertEqual((found["key"], found["scale"]), (names[tonic], "minor" if minor else "major"))
                confidences.append(found["keyConfidence"])
            self.assertLess(max(confidences) - min(confidences), 0.5)

    def test_scores_rotate_with_the_features(self):
        seed = 3
        print(f"seed {seed}", end=" ")
        rng = np.random.default_rng(seed)
        features, major, minor = rng.normal(size=(3, key_features.BLOCKS, 12))
        home = key_decision.logits(features, major, minor, 0.3).reshape(2, 12)
        moved = key_decision.logits(np.roll(features, 5, 1), major, minor, 0.3).reshape(2, 12)
        np.testing.assert_allclose(moved, np.roll(home, 5, 1), atol=1e-9)

    def test_spelling_is_the_musicians_and_accepted(self):
        majors = [key_decision.name(key)[0] for key in range(12)]
        minors = [key_decision.name(key)[0] for key in range(12, 24)]
        self.assertEqual([majors[k] for k in (1, 3, 6, 8, 10)], ["Db", "Eb", "F#", "Ab", "Bb"])
        self.assertEqual([minors[k] for k in (1, 3, 6, 8, 10)], ["C#", "Eb", "F#", "G#", "Bb"])
        self.assertLessEqual(set(majors + minors), ACCEPTED)


class ConfidenceTest(unittest.TestCase):
    def test_probabilities_sum_to_one_and_a_higher_temperature_flattens_them(self):
        scores = np.array([800.0, 799.0, -800.0] + [0.0] * 21)
        cold, warm = (confidence.probabilities(scores, t) for t in (0.5, 2.0))
        self.assertAlmostEqual(float(cold.sum()), 1)
        self.assertGreater(cold[0], warm[0])

    def test_never_certain_and_lower_for_short_recordings(self):
        self.assertEqual(confidence.key_confidence(1.0, 300), confidence.CEILING)
        self.assertLess(confidence.key_confidence(1.0, 1), 0.5)
        for best in (0.05, 0.5, 1.0):
            for seconds in (0.5, 1, 20, 10800):
                self.assertTrue(0 <= confidence.key_confidence(best, seconds) <= 1)


class WeightsTest(unittest.TestCase):
    def test_file_is_small_and_survives_a_round_trip(self):
        self.assertLess(os.path.getsize(weights.FILE), 64 * 1024)
        stored = weights.load()
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "again.f32")
            weights.save(stored, path)
            np.testing.assert_allclose(weights.load(path).minor, stored.minor)


if __name__ == "__main__":
    unittest.main()
