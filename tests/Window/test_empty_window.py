# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The window as it opens: what it says, what can be done, and what it looks like on the desktop."""

from typing import ClassVar

from cases import KEYS, WindowTestCase
from processes import wait_until

TEXTS = [
    "Tonvale", "Transpose a song from one key to another.",
    "Drop an audio file", "Choose a recording, then set the original key and destination key.",
    "Track", "No file selected", "Waiting for audio", "MP3, WAV, M4A, AIFF, and other browser-readable formats",
    "Keys", "No shift", "Recorded key", "A# / Bb major", "New key", "A# / Bb major",
    "The selected keys are the same.", "Pitch shift 0 cents", "0",
    "Preview", "Unavailable", "Select an audio file to preview the transposed playback.", "0:00", "0:00"]
BUTTONS = [("Clear", True), ("Convert", False), ("Browse files", True), ("Auto Detect Song Details", False),
           ("Play preview", False), ("Back 15 seconds", False), ("Forward 15 seconds", False)]


class EmptyWindowTest(WindowTestCase):
    def test_every_text_is_there_in_reading_order(self):
        self.assertEqual(self.program.texts(), TEXTS)

    def test_buttons_are_enabled_where_they_have_something_to_do(self):
        buttons = [(element.name, element.enabled) for element in self.program.elements()
                   if element.role == "push button"]
        self.assertEqual(buttons, BUTTONS)

    def test_pickers_are_enabled_and_stand_on_b_flat_major(self):
        for picker in ("Recorded key", "New key"):
            self.assertTrue(self.program.find("combo box", picker).enabled)
            self.assertEqual(self.chosen_key(picker), "A# / Bb major")

    def test_pickers_offer_every_key_in_order(self):
        self.open_picker("New key")
        self.program.find("list item", "B minor")
        self.assertEqual([element.name for element in self.program.elements() if element.role == "list item"], KEYS)
        self.hands.keys("Escape")

    def test_the_timeline_is_disabled_and_has_a_range(self):
        timeline = self.program.find("slider", "Position")
        self.assertFalse(timeline.enabled)
        self.assertEqual((timeline.value, timeline.range), (0, (0, 1)))

    def test_a_disabled_button_does_nothing(self):
        self.convert_button().press()
        self.program.press("Play preview")
        self.program.press("Clear")  # answered after the two
        self.assertEqual(self.program.texts(), TEXTS)

    def test_the_desktop_knows_name_and_process_of_the_window(self):
        windows = self.hands.windows(self.program.process.pid)
        self.assertEqual([self.hands.window_name(window) for window in windows], ["Tonvale"])
        self.assertEqual(self.hands.window_process(windows[0]), self.program.process.pid)

    def test_starting_and_quitting_writes_nothing(self):
        self.hands.keys("ctrl+q")
        self.assertEqual(self.program.wait_for_end(), 0)
        self.assertEqual(self.program.files_written, [])


class UnobservedWindowTest(WindowTestCase):
    """As users start it: nobody asks for the messages of its libraries."""

    environment: ClassVar[dict[str, str | None]] = {"QT_FORCE_STDERR_LOGGING": None, "QT_LOGGING_RULES": None}

    def test_nothing_is_printed(self):
        self.load_tone(seconds=1)
        self.program.press("Play preview")
        wait_until(lambda: self.program.texts()[-2:] == ["0:01", "0:01"], "the end of the song")


class WindowSizeTest(WindowTestCase):
    def content_height(self) -> int:
        """The window's height without its menu bar."""
        menus = next(element for element in self.program.elements() if element.role == "menu bar")
        return self.hands.window_size(self.window())[1] - menus.area.height

    def resize(self, width: int, height: int) -> None:
        before = self.hands.window_size(self.window())
        self.hands.resize(self.window(), width, height)
        wait_until(lambda: self.hands.window_size(self.window()) != before, "the window to change its size")

    def test_the_window_cannot_be_made_smaller_than_its_content(self):
        self.resize(300, 200)
        self.assertEqual((self.hands.window_size(self.window())[0], self.content_height()), (840, 680))

    def test_a_wider_window_widens_the_right_column_only(self):
        def widths() -> tuple[int, int]:
            controls = self.program.button("Auto Detect Song Details"), self.program.find("slider", "Position")
            return controls[0].area.width, controls[1].area.width
        detect, timeline = widths()
        width, height = self.hands.window_size(self.window())
        self.resize(width + 300, height)
        wait_until(lambda: widths() == (detect, timeline + 300),
                   lambda: f"{(detect, timeline + 300)}, they are {widths()}")

    def test_nothing_overlaps_in_the_smallest_window(self):
        self.resize(300, 200)
        self.load_tone(name="A song whose name goes on and on " * 5 + ".wav", seconds=1)
        self.transpose("C# / Db major", "D# / Eb minor")
        things = [element for element in self.program.elements()
                  if element.role in ("label", "push button", "slider", "combo box")]
        frame = next(element for element in self.program.elements() if element.role == "frame").area
        for index, thing in enumerate(things):
            area = thing.area
            self.assertTrue(frame.contains(area), thing)
            for other in (other for other in things[index + 1 :] if other not in thing.walk()):
                self.assertFalse(area.overlaps(other.area), (thing, area, other, other.area))
