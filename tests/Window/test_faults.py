# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What goes wrong around the window: disks that fill up, songs that vanish, programs that are killed."""

import errno
import os
import random
import time
import unittest
from pathlib import Path
from typing import ClassVar

import songs
from cases import SAVE_PANEL, WindowTestCase
from processes import wait_until

FAULTY_FILES = "TONVALE_FAULTY_FILES"  # the environment variable that says where that library is
KILLS = 5


class FullDiskTest(WindowTestCase):
    """One file, by its name, cannot be written whole."""

    environment: ClassVar[dict[str, str | None]] = {
        "LD_PRELOAD": os.environ.get(FAULTY_FILES), "TONVALE_FAULT_FILE": "full.wav",
        "TONVALE_FAULT_AT": "4", "TONVALE_FAULT_WHAT": str(errno.ENOSPC)}

    @classmethod
    def setUpClass(cls) -> None:
        if FAULTY_FILES not in os.environ:
            raise unittest.SkipTest(f"the environment variable {FAULTY_FILES} names no library")
        super().setUpClass()

    def test_is_told_and_the_song_can_be_saved_elsewhere(self):
        song = self.load_tone(seconds=2)
        before = song.read_bytes()
        self.save_as(self.folder / "full.wav")
        self.program.wait_for_text("Export failed", os.strerror(errno.ENOSPC), "File loaded")
        self.assertTrue((self.folder / "full.wav").exists(), "what was written stays")
        self.save_as(self.folder / "saved.wav")
        self.program.wait_for_text("Saved 0 semitones")
        self.assertEqual(songs.read_wav(self.folder / "saved.wav").seconds, 2.0)
        self.assertEqual(song.read_bytes(), before)


class VanishingSongTest(WindowTestCase):
    def test_a_deleted_song_plays_but_cannot_be_saved(self):
        self.load_tone().unlink()
        self.program.press("Play preview")
        self.assert_hears(songs.CONCERT_PITCH)
        self.program.press("Forward 15 seconds")
        self.assert_hears(songs.CONCERT_PITCH)
        self.save_as(self.folder / "saved.wav")
        self.program.wait_for_text("Export failed", "No such file or directory")
        self.assertFalse((self.folder / "saved.wav").exists())

    def test_a_song_deleted_while_it_plays_plays_on(self):
        song = self.load_tone(seconds=60)
        self.program.press("Play preview")
        self.assert_hears(songs.CONCERT_PITCH)
        song.unlink()
        heard = self.recorder.next(3.0)
        self.assertGreater(abs(heard[-self.recorder.RATE :]).max(), 0.4)
        self.program.wait_for_text("Playing")

    def test_a_song_cut_off_while_it_plays_is_silent_from_there(self):
        song = self.load_tone(seconds=60)
        self.program.press("Play preview")
        self.assert_hears(songs.CONCERT_PITCH)
        os.truncate(song, 44 + 2 * songs.RATE * 10)
        self.program.press("Forward 15 seconds")
        self.assert_silent()
        self.program.wait_for_text("Playing")
        for _ in range(3):
            self.program.press("Back 15 seconds")
        self.assert_hears(songs.CONCERT_PITCH)
        self.load_tone(name="other.wav")

    def test_a_song_that_another_took_the_place_of_is_heard_until_it_is_loaded_anew(self):
        song = self.load_tone()
        songs.tone(self.folder / "new.wav", 2, 2 * songs.CONCERT_PITCH).rename(song)
        self.program.press("Play preview")
        self.assert_hears(songs.CONCERT_PITCH)
        self.save_as(self.folder / "saved.wav")
        self.program.wait_for_text("Saved 0 semitones")
        self.assertEqual(songs.read_wav(self.folder / "saved.wav").seconds, 2.0, "what is there now is saved")
        self.load(song)
        self.program.press("Play preview")
        self.assert_hears(2 * songs.CONCERT_PITCH)

    def test_a_song_deleted_while_it_is_saved_is_saved_whole(self):
        song = songs.silence(self.folder / "long.wav", 0.1)
        self.load(song)
        self.save_as(self.folder / "saved.wav")
        wait_until((self.folder / "saved.wav").exists, "the file")
        song.unlink()
        self.program.wait_for_text("Saved 0 semitones")
        self.assertEqual((self.folder / "saved.wav").stat().st_size, 44 + 360 * songs.RATE * 4)


class KilledTest(WindowTestCase):
    def accept_proposed_name(self) -> None:
        self.press_convert()
        self.program.dialog(SAVE_PANEL)
        self.program.wait_for_focus("text", "File name:")
        self.hands.keys("Return")

    def test_leaves_the_song_as_it_is_and_nothing_but_the_unfinished_file(self):
        seed = random.randrange(1 << 32)
        print("seed", seed)
        moments = random.Random(seed)
        song = self.tone(seconds=120)
        before, saved = song.read_bytes(), self.folder / "Night Song - Key of Bb.wav"
        for kill in range(KILLS):
            with self.subTest(f"kill {kill} of seed {seed}"):
                if kill > 0:
                    self.program = self.start(f"program {kill}")
                self.load(song)
                self.accept_proposed_name()
                self.program.wait_for_text("Rendering 0 semitones")
                time.sleep(moments.uniform(0, 0.5))  # the moment, which nothing waits for
                self.program.kill()
                self.assertEqual(song.read_bytes(), before)
                self.assertLessEqual(saved.stat().st_size if saved.exists() else 0, len(before))
                self.assertEqual({file.name for file in self.folder.glob("*.*")} - {saved.name}, {song.name})
                self.assertEqual(self.program.files_written, [])
                saved.unlink(missing_ok=True)
        self.program = self.start("last program")
        self.load(song)
