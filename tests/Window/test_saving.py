# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Saving the transposed song: the panel, the file, and what the window says."""

from pathlib import Path

import songs
from application import AT_ONCE_SECONDS
from cases import KEYS, SAVE_PANEL, WindowTestCase
from processes import wait_until
from sound import cents, pitch_of

LONG_HOURS = 4  # takes a minute or more to render


class SavingTest(WindowTestCase):
    def assert_pitch(self, file: Path, hz: float) -> None:
        recording = songs.read_wav(file)
        middle = recording.samples[recording.rate // 4 : -recording.rate // 4]
        self.assertLess(abs(cents(pitch_of(middle, recording.rate), hz)), 1.0)

    def proposed_name(self) -> str:
        self.program.dialog(SAVE_PANEL)
        self.program.wait_for_focus("text", "File name:")
        return self.program.find("text", "File name:").text

    def test_the_panel_proposes_a_name_in_the_folder_of_the_song(self):
        self.load_tone(name="Night Song.wav", seconds=2)
        self.transpose("C major", "F# / Gb minor")
        self.press_convert()
        self.assertEqual(self.proposed_name(), "Night Song - Key of F#.wav")
        self.assertIn("Save in:", self.program.texts())
        self.assertTrue(self.program.button("Create New Folder").enabled)
        self.hands.keys("Return")
        self.program.wait_for_text("Saved +6 semitones")
        self.assert_pitch(self.folder / "Night Song - Key of F#.wav", songs.CONCERT_PITCH * 2**0.5)

    def test_special_characters_survive_from_the_song_to_the_saved_file(self):
        self.load_tone(name="50% #1 ? b.final.wav", seconds=1)
        self.press_convert()
        self.assertEqual(self.proposed_name(), "50% #1 ? b.final - Key of Bb.wav")
        self.hands.keys("Return")
        self.program.wait_for_text("Saved 0 semitones")
        self.assert_pitch(self.folder / "50% #1 ? b.final - Key of Bb.wav", songs.CONCERT_PITCH)

    def test_the_extension_is_added_once(self):
        self.load_tone(seconds=1)
        for typed, written in (("take.final", "take.final.wav"), ("take", "take.wav"), ("two.wav", "two.wav"),
                               ("LOUD.WAV", "LOUD.WAV")):
            self.save_as(self.folder / typed)
            wait_until((self.folder / written).exists, written)
            self.program.wait_for_text("Saved 0 semitones")
            self.program.wait_for_enabled("Convert to Bb")
        self.assertEqual(sorted(file.name for file in self.folder.glob("*.*")),
                         ["LOUD.WAV", "Night Song.wav", "take.final.wav", "take.wav", "two.wav"])

    def test_an_existing_file_is_replaced_only_after_a_yes(self):
        self.load_tone(seconds=1)
        for step, (typed, existing) in enumerate((("old.wav", "old.wav"), ("take.2", "take.2.wav"))):
            self.transpose(KEYS[0], KEYS[step])
            (self.folder / existing).write_text("precious")
            self.save_as(self.folder / typed)
            self.press_in_question("No")
            self.program.dialog(SAVE_PANEL)
            self.assertEqual((self.folder / existing).read_text(), "precious")
            self.accept_panel(SAVE_PANEL, self.folder / typed)
            self.press_in_question("Yes")
            self.program.wait_for_text(("Saved 0 semitones", "Saved +1 semitone")[step])
            self.assert_pitch(self.folder / existing, songs.CONCERT_PITCH * 2 ** (step / 12))

    def test_the_song_itself_can_be_replaced(self):
        song = self.load_tone(seconds=2)
        self.transpose("C major", "D major")
        self.save_as(song)
        self.press_in_question("Yes")
        self.program.wait_for_text("Saved +2 semitones")
        self.assert_pitch(song, songs.CONCERT_PITCH * 2 ** (2 / 12))

    def test_cancelling_changes_nothing(self):
        self.load_tone()
        self.program.press("Play preview")
        self.program.wait_for_text("Playing")
        self.press_convert()
        self.program.dialog(SAVE_PANEL)
        self.hands.keys("Escape")
        self.program.wait_for_no_dialog()
        self.program.wait_for_text("Playing")
        self.program.wait_for_enabled("Convert to Bb")
        self.assertEqual([file.name for file in self.folder.glob("*.wav")], ["Night Song.wav"])

    def test_saving_stops_the_preview(self):
        self.load_tone()
        self.program.press("Play preview")
        self.program.wait_for_text("Playing")
        self.save_as(self.folder / "saved.wav")
        self.program.wait_for_text("Saved 0 semitones")
        self.program.button("Play preview")
        self.assert_silent()

    def test_a_place_that_cannot_be_written_is_reported(self):
        song = self.load_tone(seconds=1)
        self.save_as("/sys/saved.wav")  # refused to everybody, root included
        self.program.wait_for_text("Export failed")
        texts = self.program.texts()
        self.assertEqual(texts.count("Export failed"), 2)  # in place of the song's name, and in the preview's pill
        self.assertEqual(texts[texts.index("Export failed") + 1], "Permission denied")
        self.assertIn("File loaded", texts)
        self.assertNotIn(song.name, texts)
        self.save_as(self.folder / "saved.wav")
        self.program.wait_for_text("Saved 0 semitones")


class LongExportTest(WindowTestCase):
    def setUp(self) -> None:
        super().setUp()
        self.load(songs.silence(self.folder / "long.wav", LONG_HOURS))
        self.transpose("C major", "B major")
        self.saved = self.folder / "saved.wav"
        self.save_as(self.saved)
        self.program.wait_for_text("Rendering -1 semitone")

    def test_the_window_says_that_it_renders_and_works_on(self):
        self.program.wait_for_enabled("Rendering...", False)
        self.choose_key("New key", "D major")
        self.program.press("Play preview")
        self.program.wait_for_text("Playing", "Up 2 semitones.")
        self.program.press("Stop")
        self.program.wait_for_text("Rendering -1 semitone")

    def test_clear_shows_an_empty_window_at_once(self):
        self.program.press("Clear")
        self.program.wait_for_text("Unavailable", "No file selected")
        self.program.wait_for_enabled("Convert", False)

    def test_closing_the_window_ends_at_once(self):
        wait_until(self.saved.exists, "the file")
        self.hands.keys("alt+F4")
        self.assertEqual(self.program.wait_for_end(AT_ONCE_SECONDS), 0)
        self.assertEqual(self.program.files_written, [])
