# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The two pickers, and every text that follows them."""

from cases import WindowTestCase

# recorded key, new key, pill, description, cents, figure, button; the tritone keeps the direction of the difference
SHIFTS = (
    ("C major", "E major", "+4 semitones", "Up 4 semitones.", "Pitch shift 400 cents", "+4", "Convert to E"),
    ("C major", "A minor", "-3 semitones", "Down 3 semitones.", "Pitch shift -300 cents", "-3", "Convert to A"),
    ("B major", "C major", "+1 semitones", "Up 1 semitone.", "Pitch shift 100 cents", "+1", "Convert to C"),
    ("C major", "B minor", "-1 semitones", "Down 1 semitone.", "Pitch shift -100 cents", "-1", "Convert to B"),
    ("C major", "F# / Gb major", "+6 semitones", "Up 6 semitones.", "Pitch shift 600 cents", "+6", "Convert to F#"),
    ("F# / Gb major", "C major", "-6 semitones", "Down 6 semitones.", "Pitch shift -600 cents", "-6", "Convert to C"),
    ("C# / Db major", "C# / Db minor", "No shift", "The selected keys are the same.", "Pitch shift 0 cents", "0",
     "Convert to C#"))


class KeysTest(WindowTestCase):
    def test_every_text_follows_the_keys(self):
        self.load_tone(seconds=1)
        for recorded, new, *texts, button in SHIFTS:
            self.transpose(recorded, new)
            self.program.wait_for_text(*texts)
            self.program.button(button)

    def test_keys_can_be_chosen_without_a_song(self):
        self.transpose("C major", "D major")
        self.program.wait_for_text("Up 2 semitones.")
        self.program.button("Convert")

    def test_typing_in_a_closed_picker_finds_the_key(self):
        for picker, typed, key in (("Recorded key", "eb", "D# / Eb major"), ("New key", "a minor", "A minor")):
            self.focus("combo box", picker)
            self.hands.type(typed)
            self.wait_for_key(picker, key)
        self.program.wait_for_text("Up 6 semitones.")

    def test_typing_in_an_open_list_finds_the_key(self):
        for picker, typed, key in (("Recorded key", "f#", "F# / Gb major"), ("New key", "bb m", "A# / Bb major")):
            self.open_picker(picker)
            self.hands.type(typed)
            self.hands.keys("Return")
            self.wait_for_key(picker, key)
            self.wait_for_closed_pickers()
        self.program.wait_for_text("Up 4 semitones.")

    def test_space_opens_the_list(self):
        self.focus("combo box", "New key")
        self.hands.keys("space")
        self.program.find("list item", "C major")
        self.hands.keys("Escape")
        self.wait_for_closed_pickers()

    def test_a_screen_reader_can_open_a_list_and_choose(self):
        self.program.find("combo box", "New key").press()
        self.program.find("list item", "B major").press()
        self.wait_for_key("New key", "B major")

    def test_arrows_choose_the_neighbours(self):
        self.focus("combo box", "New key")
        self.hands.keys("Down")
        self.wait_for_key("New key", "B major")
        self.hands.keys("Up", "Up")
        self.wait_for_key("New key", "A major")
        self.program.wait_for_text("Down 1 semitone.")

    def test_the_open_list_obeys_the_keyboard(self):
        self.open_picker("New key")
        self.program.find("list item", "C major")
        self.hands.keys("Home", "Down", "Return")
        self.wait_for_key("New key", "C# / Db major")
        self.wait_for_closed_pickers()
        self.program.wait_for_text("Up 3 semitones.")

    def test_a_list_closes_with_escape_and_changes_nothing(self):
        self.open_picker("New key")
        self.program.find("list item", "C major")
        self.hands.keys("Home", "Escape")
        self.wait_for_closed_pickers()
        self.wait_for_key("New key", "A# / Bb major")
        self.program.wait_for_text("No shift")

    def test_a_double_click_on_a_picker_chooses_nothing(self):
        """Also where the list, kept in the window, opens with another key under the pointer."""
        self.hands.resize(self.window(), 300, 200)  # as small as it gets
        for key in ("B minor", "C major"):
            self.choose_key("New key", key)
            self.hands.double_click(self.program.find("combo box", "New key").area.middle)
            self.program.find("list item", "C major")
            self.hands.keys("Return")
            self.wait_for_closed_pickers()
            self.assertEqual(self.chosen_key("New key"), key)

    def test_a_press_beside_the_open_list_only_closes_it(self):
        self.load_tone()
        clear = self.program.button("Clear").area.middle
        self.open_picker("New key")
        self.hands.click(clear)
        self.wait_for_closed_pickers()
        self.assertIn("File loaded", self.program.texts())
        self.hands.click(clear)
        self.program.wait_for_text("No file selected")

    def test_a_key_can_be_chosen_with_one_long_press(self):
        picker = self.program.find("combo box", "New key").area.middle
        self.hands.move(picker)
        self.hands.press()
        entry = self.program.find("list item", "B major").area.middle
        self.hands.drag_on(entry)
        self.hands.release()
        self.wait_for_key("New key", "B major")
        self.wait_for_closed_pickers()

    def test_a_key_can_be_chosen_with_the_mouse(self):
        self.hands.click(self.program.find("combo box", "New key").area.middle)
        self.hands.click(self.program.find("list item", "B major").area.middle)
        self.wait_for_key("New key", "B major")
        self.program.wait_for_text("Up 1 semitone.")
