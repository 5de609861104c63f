# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the program is for, from end to end. These tests also run under sanitizers."""

import songs
from cases import WindowTestCase
from detection import ANSWER
from sound import cents, pitch_of


class TypicalUseTest(WindowTestCase):
    def test_a_dropped_song_is_heard_in_another_key_and_saved(self):
        self.load_tone(seconds=8)
        self.transpose("C major", "D# / Eb major")
        self.program.press("Play preview")
        self.assert_hears(songs.CONCERT_PITCH * 2 ** (3 / 12))
        saved = self.folder / "saved.wav"
        self.save_as(saved)
        self.program.wait_for_text("Saved +3 semitones")
        recording = songs.read_wav(saved)
        self.assertEqual((recording.channels, recording.bits, recording.rate), (1, 16, songs.RATE))
        self.assertEqual(len(recording.samples), 8 * songs.RATE)
        middle = recording.samples[songs.RATE : 7 * songs.RATE]
        self.assertLess(abs(cents(pitch_of(middle, songs.RATE), songs.CONCERT_PITCH * 2 ** (3 / 12))), 1.0)

    def test_details_of_a_song_are_detected(self):
        self.installation.helper.write_text(ANSWER)
        self.load_tone()
        self.program.press("Auto Detect Song Details")
        self.program.wait_for_text("Key  : A minor - Confidence 82%", "Tempo  : 122 BPM - Unverified",
                                   "Up 1 semitone.")
        self.assertEqual(self.chosen_key("Recorded key"), "A minor")

    def test_a_song_that_cannot_be_opened_is_reported(self):
        self.drop(self.folder / "missing.mp3")
        self.program.wait_for_text("Could not load audio", "No file selected")
