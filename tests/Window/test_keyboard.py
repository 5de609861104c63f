# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The whole window by keyboard: where Tab leads, what shows it, and what a screen reader says on the way."""

import numpy as np
from accessibility import Element
from cases import WindowTestCase
from processes import wait_until
from screen import Area, changed_pixels

BUTTON, PICKER, TIMELINE = "push button", "combo box", "slider"
LOADED = [(BUTTON, "Clear"), (BUTTON, "Convert to Bb"), (BUTTON, "Browse files"), (BUTTON, "Auto Detect Song Details"),
          (PICKER, "Recorded key"), (PICKER, "New key"), (BUTTON, "Play preview"), (TIMELINE, "Position"),
          (BUTTON, "Back 15 seconds"), (BUTTON, "Forward 15 seconds")]
EMPTY = [(BUTTON, "Clear"), (BUTTON, "Browse files"), (PICKER, "Recorded key"), (PICKER, "New key")]
SPOKEN = """
Play preview, push button
Position, slider, 0 of 120
Back 15 seconds, push button
Forward 15 seconds, push button
Clear, push button
Convert to Bb, push button
Browse files, push button
Auto Detect Song Details, push button
Recorded key, combo box, A# / Bb major
New key, combo box, A# / Bb major
""".strip().splitlines()
VISIBLE_PIXELS = 20  # of a ring around a control there are some hundred


class KeyboardTest(WindowTestCase):
    def key_and_wait(self, key: str, before: Element | None) -> Element:
        """Presses a key and waits for the focus to move."""
        self.hands.keys(key)
        return wait_until(lambda: (now := self.program.focused()) and now != before and (
            before is None or (now.role, now.name) != (before.role, before.name)) and now, f"{key} to leave {before}")

    def round_trip(self, key: str, length: int) -> list[Element]:
        """All that has the keyboard in turn, until it is the first one's again."""
        self.focus(BUTTON, "Clear")
        stops = [self.program.focused()]
        for _ in range(length):
            stops.append(self.key_and_wait(key, stops[-1]))
        return stops

    def test_tab_leads_through_every_control_as_one_reads(self):
        for expected in (EMPTY, LOADED):
            stops = [(stop.role, stop.name) for stop in self.round_trip("Tab", len(expected))]
            self.assertEqual(stops, [*expected, expected[0]])
            back = [(stop.role, stop.name) for stop in self.round_trip("shift+Tab", len(expected))]
            self.assertEqual(back, [expected[0], *reversed(expected)])
            if expected is EMPTY:
                self.load_tone()

    def picture(self, control: tuple[str, str]) -> np.ndarray:
        return self.screen.picture(self.program.find(*control).area.grown(4))

    def test_the_focus_is_visible_on_every_control(self):
        self.load_tone()
        self.program.wait_for_focus(BUTTON, "Play preview")
        focused_play = self.picture((BUTTON, "Play preview"))
        self.program.button("Clear").focus()
        wait_until(lambda: changed_pixels(focused_play, self.picture((BUTTON, "Play preview"))) > VISIBLE_PIXELS,
                   "a visible focus")
        self.hands.keys("Tab", "Tab")
        self.program.wait_for_focus(BUTTON, "Browse files")
        others = [control for control in LOADED if control != (BUTTON, "Browse files")]
        without_focus = {control: self.picture(control) for control in others}
        for control in [*LOADED[3:], *LOADED[:2]]:
            self.hands.keys("Tab")
            self.program.wait_for_focus(*control)
            wait_until(lambda control=control:
                       changed_pixels(without_focus[control], self.picture(control)) > VISIBLE_PIXELS,
                       f"a visible focus on {control}")

    def test_a_focus_that_a_screen_reader_sets_is_visible(self):
        self.load_tone()
        self.program.wait_for_focus(BUTTON, "Play preview")
        without_focus = {control: self.picture(control) for control in LOADED}
        self.focus(BUTTON, "Clear")
        without_focus[BUTTON, "Play preview"] = self.picture((BUTTON, "Play preview"))
        for control in LOADED[1:]:
            self.focus(*control)
            wait_until(lambda control=control:
                       changed_pixels(without_focus[control], self.picture(control)) > VISIBLE_PIXELS,
                       f"a visible focus on {control}")

    def spoken(self, element: Element) -> str:
        """The words of a screen reader that comes to a control."""
        words = [element.name, element.role]
        if element.role == PICKER:
            words.append(self.chosen_key(element.name))
        if element.role == TIMELINE:
            words.append(f"{element.value:g} of {element.range[1]:g}")
        return ", ".join([*words, *(["unavailable"] if not element.enabled else [])])

    def test_a_screen_reader_tells_every_control_and_its_value(self):
        self.load_tone()
        self.program.wait_for_focus(BUTTON, "Play preview")
        heard = [self.program.focused()]
        while len(heard) < len(LOADED):
            heard.append(self.key_and_wait("Tab", heard[-1]))
        self.assertEqual([self.spoken(element) for element in heard], SPOKEN)

    def test_space_and_return_press_the_button_with_the_focus(self):
        self.load_tone()
        for key, name, position in (("space", "Forward 15 seconds", "0:15"), ("Return", "Back 15 seconds", "0:00")):
            self.focus(BUTTON, name)
            self.hands.keys(key)
            wait_until(lambda position=position: self.program.texts()[-2] == position, position)
        for key in ("space", "Return"):  # one with words beside those with a symbol
            self.focus(BUTTON, "Clear")
            self.hands.keys(key)
            self.program.wait_for_text("No file selected")
            self.load_tone(name=f"after {key}.wav")

    def test_every_control_lies_in_the_window(self):
        frame: Area = self.program.find("frame", "Tonvale").area
        for role, name in EMPTY:
            area = self.program.find(role, name).area
            self.assertTrue(area.width > 10 and area.height > 10 and frame.contains(area), name)
