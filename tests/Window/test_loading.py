# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""How a song comes into the window: dropped, chosen in the open panel, or not at all."""

import shutil
from pathlib import Path

from cases import WindowTestCase
from dragging import links
from processes import wait_until
from screen import Area, changed_pixels

EMPTY = ("No file selected", "Waiting for audio", "MP3, WAV, M4A, AIFF, and other browser-readable formats")
LINK = {"type": "text/uri-list", "data": "https://tonvale.example/song.mp3\r\n"}
TEXT = {"type": "text/plain", "data": "song.mp3"}


class DropTest(WindowTestCase):
    def test_a_dropped_song_is_loaded(self):
        song = self.tone("take2.wav", seconds=75)
        # A move would take the song from its folder.
        self.assertEqual(self.drag_source.hover(links(song), self.drop_place()), "copy")
        self.assertTrue(self.drag_source.release())
        self.program.wait_for_text("take2.wav", "WAV audio file", "File loaded", "Ready", "1:15",
                                   "Drag the timeline or use the skip buttons to jump through the song.")
        for name in ("Convert to Bb", "Auto Detect Song Details", "Play preview", "Back 15 seconds",
                     "Forward 15 seconds"):
            self.program.wait_for_enabled(name)
        timeline = self.program.find("slider", "Position")
        self.assertTrue(timeline.enabled)
        self.assertEqual((timeline.value, timeline.range), (0, (0, 75)))

    def test_the_first_of_several_files_is_loaded(self):
        names = ("second.wav", "first.wav", "third.wav")  # not in the order of the alphabet
        self.drop(*(self.tone(name, seconds=1) for name in names))
        self.program.wait_for_text("second.wav", "File loaded")

    def test_text_and_web_links_are_refused(self):
        for offer in (TEXT, LINK):
            self.assertFalse(self.drag_source.drop(offer, self.drop_place()), offer)
        self.program.wait_for_text(*EMPTY)

    def test_folders_and_other_files_are_ignored(self):
        note = self.folder / "note.wav"
        note.write_text("This is no song, whatever its name says.\n")
        for file in (self.desktop.make_folder("album.mp3"), note):
            self.assertTrue(self.drop(file))
        self.load_tone(name="afterwards.wav")  # loads are done in order, so the two have been dealt with
        self.drop(note)
        self.program.press("Play preview")
        self.program.wait_for_text("Playing", "afterwards.wav")

    def test_the_panel_is_outlined_while_a_file_hovers_and_only_then(self):
        place = self.drop_place()
        corner = Area(place[0] - 120, place[1] - 200, 80, 80)  # the upper left one of the panel
        before = self.screen.picture(corner)

        def is_outlined() -> bool:
            return changed_pixels(before, self.screen.picture(corner)) > 50
        for offer in (LINK, TEXT, links(self.tone())):
            taken = self.drag_source.hover(offer, place)
            self.assertEqual(taken, "copy" if offer not in (LINK, TEXT) else "none")
            wait_until(lambda taken=taken: is_outlined() == (taken == "copy"), f"the outline to tell {taken!r}")
            self.hands.move((place[0], place[1] + 300))
            wait_until(lambda: not is_outlined(), "the outline to be as before")
            self.drag_source.release()
        self.program.wait_for_text(*EMPTY)

    def test_names_with_special_characters_stay_whole(self):
        self.load(self.tone("50% #1 ? <b>é  &amp;.wav", seconds=1))

    def test_a_song_without_an_extension_is_known_by_its_content(self):
        self.load(self.tone("Song", seconds=1))
        self.program.wait_for_text("Audio file")


class ReplacingTest(WindowTestCase):
    def test_another_song_starts_afresh(self):
        self.load_tone(name="one.wav")
        self.transpose("C major", "D major")
        self.program.press("Forward 15 seconds")
        self.program.wait_for_text("0:15", "Up 2 semitones.")
        self.load(self.tone("two.wav"))
        self.program.wait_for_text("No shift", "0:00")
        self.assertEqual([self.chosen_key(picker) for picker in ("Recorded key", "New key")], ["A# / Bb major"] * 2)

    def test_a_song_that_cannot_be_opened_keeps_the_keys(self):
        self.load_tone()
        self.transpose("C major", "D major")
        broken = self.folder / "broken.MP3"
        broken.write_bytes(b"")
        self.drop(broken)
        self.program.wait_for_text("Could not load audio", "No file selected", "Unavailable", "Up 2 semitones.")
        self.program.wait_for_enabled("Convert", False)
        texts = self.program.texts()
        self.assertNotEqual(texts[texts.index("Could not load audio") + 1], "")
        self.load(self.tone("good.wav"))

    def test_clear_empties_the_window_but_keeps_the_keys(self):
        self.load_tone()
        self.transpose("C major", "D major")
        self.program.press("Play preview")
        self.program.wait_for_text("Playing")
        self.program.press("Clear")
        self.program.wait_for_text(*EMPTY, "Unavailable", "Up 2 semitones.", "0:00")
        self.assert_silent()
        self.program.wait_for_enabled("Play preview", False)


class OpenPanelTest(WindowTestCase):
    def choose(self, file: Path) -> None:
        self.accept_panel("Open", file)
        self.program.wait_for_no_dialog()

    def test_browsing_loads_the_chosen_song(self):
        song = self.tone("50% #1.wav")
        self.program.press("Browse files")
        self.choose(song)
        self.program.wait_for_text("50% #1.wav", "File loaded")

    def test_the_panel_shows_songs_and_folders_only(self):
        for name in ("a.mp3", "b.MP3", "c.txt", "d.flac", "e.caf"):
            (self.folder / "program" / name).write_text("")  # the folder in which the program runs
        self.hands.keys("ctrl+o")
        self.program.find("tree item", "a.mp3")
        shown = {element.name for element in self.program.elements() if element.role == "tree item"}
        self.assertLessEqual({"a.mp3", "b.MP3", "d.flac", "e.caf"}, shown)
        self.assertNotIn("c.txt", shown)
        self.hands.keys("Escape")
        self.program.wait_for_no_dialog()

    def test_cancelling_changes_nothing(self):
        self.load_tone(name="kept.wav")
        self.program.press("Play preview")
        self.program.wait_for_text("Playing")
        self.program.press("Browse files")
        self.program.dialog("Open")
        self.hands.keys("Escape")
        self.program.wait_for_no_dialog()
        self.program.wait_for_text("Playing", "kept.wav")

    def test_choosing_writes_nothing_to_the_home_directory(self):
        song = shutil.copy(self.tone(), self.folder / "chosen.wav")
        self.hands.keys("ctrl+o")
        self.choose(song)
        self.program.wait_for_text("chosen.wav")
        self.hands.keys("ctrl+q")
        self.program.wait_for_end()
        self.assertEqual(self.program.files_written, [])


class FocusAfterLoadingTest(WindowTestCase):
    def test_space_plays_and_stops_right_after_a_load(self):
        self.load_tone()
        self.program.wait_for_focus("push button", "Play preview")
        self.hands.keys("space")
        self.program.wait_for_text("Playing")
        self.hands.keys("space")
        self.program.wait_for_text("Ready")

    def test_it_does_so_after_choosing_a_file_too(self):
        song = self.tone()
        self.program.press("Browse files")
        self.accept_panel("Open", song)
        self.program.wait_for_focus("push button", "Play preview")
        self.hands.keys("space")
        self.program.wait_for_text("Playing")
