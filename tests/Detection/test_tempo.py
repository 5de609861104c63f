# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Onset curves, periodicity and tempo decision."""

import unittest

import support
from support import RATE, clicks, np
from tonvale_keys import analysis, onsets, periodicity, tempo_decision, weights


def curves_of(audio: np.ndarray) -> np.ndarray:
    track = onsets.OnsetTrack()
    track.add(audio)
    return track.finish()


class OnsetsTest(unittest.TestCase):
    def test_a_click_raises_the_curve_where_it_is(self):
        audio = np.zeros(2 * RATE, np.float32)
        audio[RATE : RATE + 200] = 0.5
        peak = int(curves_of(audio)[:, 0].argmax())
        # The click enters at the end of a frame: at most a frame and a hop before its own time.
        self.assertAlmostEqual(peak / onsets.RATE, 1.0, delta=(onsets.LENGTH + onsets.HOP) / RATE)

    def test_block_sizes_do_not_matter(self):
        audio = clicks(100, 5)
        track = onsets.OnsetTrack()
        for start in range(0, len(audio), 777):
            track.add(audio[start : start + 777])
        np.testing.assert_allclose(track.finish().astype(float), curves_of(audio).astype(float), atol=0.05)

    def test_shorter_than_a_frame_gives_no_curve(self):
        self.assertEqual(curves_of(np.zeros(500, np.float32)).shape, (0, onsets.CURVES))


class PeriodicityTest(unittest.TestCase):
    def test_peaks_at_the_period(self):
        found = periodicity.of(curves_of(clicks(120, 30)))[0]
        lag = 20 + int(found[20 : len(found) // 2].argmax())
        multiple = lag / (60 / 120 * onsets.RATE)
        self.assertAlmostEqual(multiple, round(multiple), delta=0.06)
        self.assertAlmostEqual(float(found[0]), 1.0, places=5)

    def test_finite_for_silence_and_for_short_curves(self):
        for length in (0, 1, 5, 400):
            self.assertTrue(np.isfinite(periodicity.of(np.zeros((length, onsets.CURVES), np.float16))).all())


class TempoTest(unittest.TestCase):
    def test_clear_beats_are_found_up_to_the_octave(self):
        trained = weights.load()
        for bpm in (63, 90, 100.5, 127, 140, 171):
            found = tempo_decision.decide(periodicity.of(curves_of(clicks(bpm, 40))), trained.tempo, 40)
            ratio = found / bpm
            self.assertLess(min(abs(ratio / octave - 1) for octave in (0.5, 1, 2)), 0.01, f"{bpm}: {found}")

    def test_no_tempo_under_six_seconds_or_without_a_pulse(self):
        trained = weights.load()
        found = periodicity.of(curves_of(clicks(120, 5.5)))
        self.assertIsNone(tempo_decision.decide(found, trained.tempo, 5.5))
        self.assertIsNone(tempo_decision.decide(np.zeros((3, periodicity.LAGS + 1)), trained.tempo, 60))

    def test_short_songs_have_no_bpm_member(self):
        found = analysis.answer(analysis.collect([support.song(0, False, 1, 0.5)]), weights.load())
        self.assertNotIn("bpm", found)


if __name__ == "__main__":
    unittest.main()
