# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""A sound server that dies while a song plays, and one that comes back."""

import songs
from cases import WindowTestCase
from processes import wait_until


class DyingSoundServerTest(WindowTestCase):
    def setUp(self) -> None:
        super().setUp()
        self.load_tone(seconds=600)
        self.program.press("Play preview")
        self.program.wait_for_text("Playing")
        self.assert_hears(songs.CONCERT_PITCH)
        self.desktop.kill_sound()
        self.addCleanup(lambda: self.desktop.has_sound or self.desktop.start_sound())

    def test_the_window_goes_on_and_plays_again_with_the_next_server(self):
        timeline = self.program.find("slider", "Position")
        position = timeline.value
        # The position is the clock's, so it goes on; nothing has been asked of the server that could fail.
        wait_until(lambda: timeline.value > position + 0.5, "the position to go on")
        self.program.wait_for_text("Playing", "Night Song.wav")
        self.desktop.start_sound()
        self.transpose("C major", "D major")
        self.program.press("Forward 15 seconds")
        self.program.wait_for_text("Playing", "Up 2 semitones.")
        self.assert_hears(songs.CONCERT_PITCH * 2 ** (2 / 12))

    def test_playing_without_a_server_says_why_it_fails(self):
        self.program.press("Stop")
        self.program.wait_for_text("Ready")
        self.program.press("Play preview")
        self.program.wait_for_text("Preview failed", "Connection refused", "Ready", "File loaded")
        self.desktop.start_sound()
        self.program.press("Play preview")
        self.program.wait_for_text("Playing")
        self.assert_hears(songs.CONCERT_PITCH)
