# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The computer is kept awake while a song plays or is saved, as the desktop's power manager sees it."""

import songs
from application import Application
from bus_service import BusService
from cases import WindowTestCase

AWAKE = "awake for Tonvale: A song is played or saved"


class SleepCase(WindowTestCase):
    manner: str

    def start(self) -> Application:
        self.manager = BusService(self.desktop, "power_manager.py", self.manner)
        self.addCleanup(self.manager.close)
        return super().start()

    def press_play(self) -> None:
        self.program.press("Play preview")
        self.program.wait_for_text("Playing")


class GrantedTest(SleepCase):
    manner = "grant"

    def test_sleep_waits_for_stop_for_the_end_of_the_song_and_for_the_saved_file(self):
        self.load_tone()
        self.press_play()
        self.assertEqual(self.manager.read(), AWAKE)
        self.program.press("Stop")
        self.assertEqual(self.manager.read(), "released")
        self.load(songs.tone(self.folder / "short.wav", 3))
        self.program.press("Play preview")
        self.assertEqual([self.manager.read(), self.manager.read()], [AWAKE, "released"])
        self.program.wait_for_text("Ready", "0:03")
        for folder, message in ((self.folder, "Saved 0 semitones"), ("/sys", "Export failed")):
            self.save_as(f"{folder}/saved.wav")
            self.program.wait_for_text(message)
            self.assertEqual([self.manager.read(), self.manager.read()], [AWAKE, "released"])

    def test_sleep_may_come_again_when_the_window_is_closed_while_a_song_plays(self):
        self.load_tone()
        self.press_play()
        self.assertEqual(self.manager.read(), AWAKE)
        self.hands.keys("ctrl+q")
        self.assertEqual(self.program.wait_for_end(), 0)
        self.assertIn(self.manager.read(), ("released", "left"))


class RefusedTest(SleepCase):
    manner = "refuse"

    def test_a_power_manager_that_refuses_changes_nothing(self):
        self.load_tone()
        self.press_play()
        self.assertEqual(self.manager.read(), "refused")
        self.assert_hears(songs.CONCERT_PITCH)
        self.program.press("Stop")
        self.program.wait_for_text("Ready")
