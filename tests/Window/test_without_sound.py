# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""A machine without a sound server: nothing can be heard, all else works."""

from typing import ClassVar

import songs
from cases import WindowTestCase


class WithoutSoundTest(WindowTestCase):
    environment: ClassVar[dict[str, str | None]] = {"PULSE_SERVER": "unix:/nonexistent/pulse"}

    def test_the_preview_says_why_it_fails(self):
        song = self.load_tone()
        self.program.press("Play preview")
        self.program.wait_for_text("Preview failed", "Ready", "File loaded")
        texts = self.program.texts()
        self.assertNotIn(song.name, texts)
        self.assertEqual(texts[texts.index("Preview failed") + 1], "Connection refused")
        self.program.button("Play preview")

    def test_saving_works(self):
        self.load_tone(seconds=1)
        self.transpose("C major", "D major")
        self.save_as(self.folder / "saved.wav")
        self.program.wait_for_text("Saved +2 semitones")
        self.assertEqual(songs.read_wav(self.folder / "saved.wav").seconds, 1.0)

    def test_another_song_can_be_loaded_after_the_failure(self):
        self.load_tone()
        self.program.press("Play preview")
        self.program.wait_for_text("Preview failed")
        self.load(self.tone("other.wav"))
