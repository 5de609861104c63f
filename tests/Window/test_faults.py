# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What goes wrong around the window: disks that fill up, songs that vanish, programs that are killed."""

import collections
import contextlib
import errno
import math
import os
import random
import stat
import threading
import time
import unittest
from collections.abc import Callable
from pathlib import Path
from typing import ClassVar

import songs
from accessibility import Gone
from cases import SAVE_PANEL, WindowTestCase
from processes import wait_until

FAULTY_FILES = "TONVALE_FAULTY_FILES"  # the environment variable that says where that library is
KILLS = int(os.environ.get("TONVALE_KILLS", "10"))
WAV_HEADER = 44  # bytes; the sizes in it are not known before the end
FORMER = b"what was there before"


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
    """The program is killed while it saves, at any moment from the order to save until all is saved."""

    def setUp(self) -> None:
        super().setUp()
        self.seed = random.randrange(1 << 32)
        print("seed", self.seed)
        self.song = self.tone(seconds=30)
        self.recording = self.song.read_bytes()
        self.saved = self.folder / "saved.wav"
        press = self.prepare_to_save(self.saved)
        start = time.monotonic()
        press()
        self.program.wait_for_text("Saved +2 semitones")
        self.usual_seconds = time.monotonic() - start
        self.whole = self.saved.read_bytes()
        self.program.kill()

    def prepare_to_save(self, file: Path) -> Callable[[], None]:
        """@return what is left to do"""
        self.load(self.song)
        self.choose_key("New key", "C major")
        self.press_convert()
        self.fill_panel(SAVE_PANEL, file)
        if not file.exists():
            return lambda: self.hands.keys("Return")
        self.hands.keys("Return")
        return self.answer_button("Yes").press

    def moments(self, count: int) -> list[float]:
        """Random ones, one in each of `count` equal parts of the time that saving takes, in seconds."""
        chance = random.Random(self.seed)
        return [1.05 * self.usual_seconds * (part + chance.random()) / count for part in range(count)]

    def kill_while_saving(self, name: str, file: Path, moment: float) -> None:
        self.program = self.start(name)
        press = self.prepare_to_save(file)
        killer = threading.Timer(moment, self.program.process.kill)
        killer.start()
        with contextlib.suppress(Gone):  # killed before it could say that it was pressed
            press()
        killer.join()
        self.program.kill()
        self.assertEqual((self.program.output, self.program.files_written), ("", []))
        self.assertLessEqual({entry.name for entry in self.folder.iterdir() if not entry.is_dir()},
                             {self.song.name, self.saved.name})

    def left(self, file: Path, former: bytes | None) -> str:
        """What there is of a file: nothing, what was there before, or the result as far as it was written."""
        if not os.path.lexists(file):
            return "nothing"
        self.assertTrue(stat.S_ISREG(file.lstat().st_mode))
        content = file.read_bytes()
        if content in (former, self.whole):
            return "all of it" if content == self.whole else "the former"
        self.assertTrue(self.whole[WAV_HEADER:].startswith(content[WAV_HEADER:]), "sound that was not to be saved")
        return "a beginning"

    def test_leaves_the_song_as_it_is_and_nothing_but_the_unfinished_file(self):
        outcomes = collections.Counter()
        for kill, moment in enumerate(self.moments(KILLS)):
            with self.subTest(f"kill {kill} of seed {self.seed}"):
                former = FORMER if kill % 2 == 1 else None
                self.saved.unlink(missing_ok=True)
                if former is not None:
                    self.saved.write_bytes(former)
                self.kill_while_saving(f"program {kill}", self.saved, moment)
                self.assertEqual(self.song.read_bytes(), self.recording)
                outcomes[self.left(self.saved, former)] += 1
        print(dict(outcomes))
        self.assertGreater(outcomes["a beginning"] + outcomes["all of it"], 0, "no kill while something was saved")

    def test_leaves_of_a_song_that_is_replaced_either_recording_or_a_part_of_the_new_one(self):
        outcomes = collections.Counter()
        for kill, moment in enumerate(self.moments(math.ceil(KILLS / 4))):
            with self.subTest(f"kill {kill} of seed {self.seed}"):
                self.song.write_bytes(self.recording)
                self.kill_while_saving(f"program {kill}", self.song, moment)
                outcomes[self.left(self.song, self.recording)] += 1
                self.assertEqual(self.saved.read_bytes(), self.whole)
        print(dict(outcomes))
        self.assertGreater(outcomes["a beginning"] + outcomes["all of it"], 0, "no kill while something was saved")
