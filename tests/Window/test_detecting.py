# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Detecting a song's key and tempo with helpers that answer, fail, or hang."""

import os
from pathlib import Path

import detection
import songs
from application import AT_ONCE_SECONDS
from cases import WindowTestCase


class DetectionCase(WindowTestCase):
    def detect(self, helper: str) -> None:
        self.installation.helper.write_text(helper)
        self.program.press("Auto Detect Song Details")

    def gate(self) -> Path:
        """A named pipe at which a helper waits."""
        gate = self.folder / "gate"
        os.mkfifo(gate)
        return gate

    def open_gate(self, gate: Path) -> None:
        with open(gate, "w"):
            pass


class DetectionTest(DetectionCase):
    def test_a_running_detection_shows_and_its_answer_is_used(self):
        self.load_tone()
        gate = self.gate()
        self.detect(detection.answer_after(gate))
        self.program.wait_for_text("Detecting song details...")
        self.program.wait_for_enabled("Detecting...", False)
        self.open_gate(gate)
        self.program.wait_for_text("Key  : A minor - Confidence 82%", "Tempo  : 122 BPM - Unverified", "+1 semitones")
        self.program.wait_for_enabled("Auto Detect Song Details")
        self.assertNotIn("Detecting song details...", self.program.texts())

    def test_the_detected_key_retunes_the_playing_song(self):
        self.load_tone()
        gate = self.gate()
        self.detect(detection.answer_after(gate))
        self.program.press("Play preview")
        self.assert_hears(songs.CONCERT_PITCH)
        self.open_gate(gate)
        self.assert_hears(songs.CONCERT_PITCH * 2 ** (1 / 12))

    def test_the_message_of_a_helper_that_fails_is_shown(self):
        self.load_tone()
        for helper, message in ((detection.FAILURE, "The song is too short."),
                                (detection.UNKNOWN_KEY,
                                 "Detected H minor, but it could not be mapped to the app's key list."),
                                ("raise SystemExit(1)", "Key detection failed.")):
            self.detect(helper)
            self.program.wait_for_text(message, "No shift")
            self.program.wait_for_enabled("Auto Detect Song Details")

    def test_the_next_song_forgets_what_was_detected(self):
        self.load_tone()
        self.detect(detection.ANSWER)
        self.program.wait_for_text("Tempo  : 122 BPM - Unverified")
        self.load(self.tone("next.wav"))
        self.assertFalse([text for text in self.program.texts() if "Tempo" in text or "Confidence" in text])


class HangingDetectionTest(DetectionCase):
    def setUp(self) -> None:
        super().setUp()
        self.load_tone()
        self.detect(detection.HANG)
        self.program.wait_for_text("Detecting song details...")

    def test_everything_else_works_meanwhile(self):
        self.program.press("Play preview")
        self.assert_hears(songs.CONCERT_PITCH)
        self.load(self.tone("next.wav"))
        self.program.wait_for_enabled("Detecting...", False)
        self.save_as(self.folder / "saved.wav")
        self.program.wait_for_text("Saved 0 semitones")
        self.program.press("Clear")
        self.program.wait_for_enabled("Auto Detect Song Details", False)
        self.load(self.tone("last.wav"))
        self.program.wait_for_enabled("Auto Detect Song Details")

    def test_closing_the_window_ends_at_once(self):
        self.hands.keys("alt+F4")
        self.assertEqual(self.program.wait_for_end(AT_ONCE_SECONDS), 0)
