# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The menu bar, its shortcuts, and the About panel."""

from accessibility import Element
from cases import WindowTestCase
from processes import wait_until

ABOUT = "About Tonvale"


class MenuTest(WindowTestCase):
    def items(self) -> list[str]:
        return [element.name for element in self.program.elements() if element.role == "menu item"]

    def open_menu(self, name: str) -> None:
        self.program.find("menu item", name).press()

    def test_the_menus_hold_what_they_should(self):
        self.assertEqual(self.items(), ["Tonvale", "File"])
        for menu, entries in (("Tonvale", [ABOUT, "Quit Tonvale"]), ("File", ["Choose Audio File...", "Stop Preview"])):
            self.open_menu(menu)
            self.program.find("menu item", entries[-1])
            self.assertEqual([item for item in self.items() if item not in ("Tonvale", "File")], entries)
            self.assertTrue(all(self.program.find("menu item", entry).enabled for entry in entries))
            self.hands.keys("Escape")
            wait_until(lambda entry=entries[0]: entry not in self.items(), "the menu to close")

    def test_menus_work_with_the_mouse(self):
        self.hands.click(self.program.find("menu item", "File").area.middle)
        self.hands.click(self.program.find("menu item", "Choose Audio File...").area.middle)
        self.program.dialog("Open")
        self.hands.keys("Escape")
        self.program.wait_for_no_dialog()

    def test_menus_work_with_the_keyboard(self):
        self.hands.keys("alt+f")
        self.program.find("menu item", "Stop Preview")
        self.hands.keys("Up", "Down", "Home", "Return")
        self.program.dialog("Open")
        self.hands.keys("Escape")
        self.program.wait_for_no_dialog()

    def test_the_keyboard_comes_to_the_first_command_and_goes_on_from_there(self):
        for key, command in (("alt+f", "Choose Audio File..."), ("Down", "Stop Preview"), ("Right", ABOUT),
                             ("Down", "Quit Tonvale"), ("Left", "Choose Audio File...")):
            self.hands.keys(key)
            self.program.wait_for_focus("menu item", command)
        self.hands.keys("Escape")
        wait_until(lambda: "Choose Audio File..." not in self.items(), "the menu to close")
        self.hands.keys("F10")
        self.program.wait_for_focus("menu item", ABOUT)
        self.hands.keys("Escape")
        wait_until(lambda: ABOUT not in self.items(), "the menu to close")

    def test_a_press_beside_an_open_menu_only_closes_it(self):
        self.load_tone()
        clear = self.program.button("Clear").area.middle
        self.hands.click(self.program.find("menu item", "File").area.middle)
        self.program.find("menu item", "Stop Preview")
        self.hands.click(clear)
        wait_until(lambda: "Stop Preview" not in self.items(), "the menu to close")
        self.assertIn("File loaded", self.program.texts())
        self.hands.click(clear)
        self.program.wait_for_text("No file selected")

    def test_choose_audio_file_has_a_shortcut(self):
        self.hands.keys("ctrl+o")
        self.program.dialog("Open")
        self.hands.keys("Escape")
        self.program.wait_for_no_dialog()

    def test_stop_preview_stops_and_is_harmless_otherwise(self):
        self.open_menu("File")
        self.program.find("menu item", "Stop Preview").press()
        self.program.wait_for_text("Unavailable")
        self.load_tone()
        self.program.press("Play preview")
        self.program.wait_for_text("Playing")
        self.open_menu("File")
        self.program.find("menu item", "Stop Preview").press()
        self.program.wait_for_text("Ready")

    def test_the_menu_quits(self):
        self.open_menu("Tonvale")
        self.program.find("menu item", "Quit Tonvale").press()
        self.assertEqual(self.program.wait_for_end(), 0)

    def test_the_shortcut_quits(self):
        self.hands.keys("ctrl+q")
        self.assertEqual(self.program.wait_for_end(), 0)

    def test_closing_the_window_quits_while_a_song_plays(self):
        self.load_tone()
        self.program.press("Play preview")
        self.program.wait_for_text("Playing")
        self.hands.keys("alt+F4")
        self.assertEqual(self.program.wait_for_end(), 0)
        self.assert_silent()


class AboutTest(WindowTestCase):
    def setUp(self) -> None:
        super().setUp()
        self.show_about()

    def show_about(self) -> None:
        self.program.find("menu item", "Tonvale").press()
        self.program.find("menu item", ABOUT).press()
        self.panel()

    def panels(self) -> list[Element]:
        return [element for element in self.program.elements()
                if element.name == ABOUT and element.role in ("dialog", "frame")]

    def panel(self) -> Element:
        return wait_until(lambda: next(iter(self.panels()), None),
                          lambda: f"the panel among\n{self.program.describe()}")

    def test_it_says_name_version_and_author(self):
        texts = [element.name for element in self.panel().walk() if element.role == "label"]
        self.assertEqual(texts, ["Tonvale", "1.0", "Author - The Tonvale Authors"])

    def test_it_is_a_window_of_its_own_name(self):
        names = [self.hands.window_name(window) for window in self.hands.windows(self.program.process.pid)]
        self.assertEqual(sorted(names), [ABOUT, "Tonvale"])

    def test_it_is_there_once_however_often_it_is_shown(self):
        self.show_about()
        self.assertEqual(len(self.panels()), 1)

    def test_escape_closes_it_and_only_it(self):
        wait_until(lambda: "active" in self.panel().states, "the panel to have the keyboard")
        self.hands.keys("Escape")
        wait_until(lambda: not self.panels(), "the panel to close")
        self.program.button("Browse files")

    def test_the_window_works_beside_it(self):
        self.load_tone()
        self.program.press("Play preview")
        self.program.wait_for_text("Playing")

    def test_closing_the_main_window_quits_although_it_is_open(self):
        self.hands.click(self.program.find("label", "Track").area.middle)
        wait_until(lambda: "active" in self.program.find("frame", "Tonvale").states,
                   "the main window to have the keyboard")
        self.hands.keys("alt+F4")
        self.assertEqual(self.program.wait_for_end(), 0)
