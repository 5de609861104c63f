# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Light and dark: the window follows the desktop's setting, also when it changes."""

from application import Application
from bus_service import BusService
from cases import WindowTestCase
from processes import wait_until

DARK, LIGHT = 1, 2  # the portal's numbers


class SchemeCase(WindowTestCase):
    first: int

    def start(self) -> Application:
        self.portal = BusService(self.desktop, "settings_portal.py", str(self.first))
        self.addCleanup(self.portal.close)
        return super().start()

    def choose(self, scheme: int) -> None:
        self.portal.write(str(scheme))
        self.assertEqual(self.portal.read(), "changed")

    def wait_for(self, scheme: int) -> None:
        frame = self.program.find("frame", "Tonvale")

        def is_as_chosen() -> bool:
            brightness = self.screen.brightness(frame.area)
            return brightness < 90 if scheme == DARK else brightness > 200
        wait_until(is_as_chosen,
                   lambda: f"the scheme {scheme}, the brightness is {self.screen.brightness(frame.area):.0f}")


class LightSchemeTest(SchemeCase):
    first = LIGHT

    def test_a_light_desktop_has_a_light_window(self):
        self.wait_for(LIGHT)

    def test_the_window_follows_while_it_is_open(self):
        for scheme in (DARK, LIGHT, DARK):
            self.choose(scheme)
            self.wait_for(scheme)


class DarkSchemeTest(SchemeCase):
    first = DARK

    def test_a_dark_desktop_has_a_dark_window(self):
        self.wait_for(DARK)

    def test_the_file_panel_is_dark_too(self):
        self.hands.keys("ctrl+o")
        area = self.program.dialog("Open").area
        wait_until(lambda: self.screen.brightness(area) < 90, lambda: f"dark, it is {self.screen.brightness(area):.0f}")
        self.hands.keys("Escape")
        self.program.wait_for_no_dialog()
