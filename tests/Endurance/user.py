# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""A user who does whatever comes to mind with what shows in the window."""

from __future__ import annotations

import random
from collections.abc import Callable
from pathlib import Path
from urllib.parse import unquote

import detection
from accessibility import Element, Gone
from application import Application
from dragging import DragSource
from hands import Hands
from materials import Materials
from promises import Promises
from reader import View

Expectation = Callable[[View], bool]
# Nothing that quits, closes the window or deletes a file.
KEYBOARD = ("Tab", "Tab", "Tab", "shift+Tab", "space", "space", "Return", "Escape", "Up", "Down", "Left", "Right",
            "Home", "End", "Prior", "Next", "ctrl+period", "F10", "alt", "Menu", "BackSpace", "ctrl+a")
POPUP_KEYS = ("Up", "Down", "Down", "Home", "End", "Prior", "Next", "Return", "space", "Escape", "Tab")
MENU_KEYS = ("Up", "Down", "Left", "Right", "Escape", "Tab", "Home")  # nothing that could choose to quit
# What can be done twice without a look at what came of it, but for the buttons that open a panel.
BLIND = ("click", "press", "drag_timeline", "nudge_timeline", "resize", "scroll", "set_helper", "end_helpers", "focus",
         "choose_scheme")
OPENING = ("Browse", "Convert")
LETTERS = ("c", "eb", "f#", "bb m", "a minor", "g#", "h", "b", "e", "xyz")
HELPERS = (detection.ANSWER, detection.ANSWER, detection.FAILURE, detection.UNKNOWN_KEY, detection.HANG,
           "raise SystemExit(1)", "print('no answer')")
SIZES = ((300, 200), (840, 680), (900, 762), (1000, 800), (1500, 760), (900, 1100))


class User:
    def __init__(self, seed: int, hands: Hands, drag_source: DragSource, materials: Materials,
                 change_scheme: Callable[[int], None]) -> None:
        self._random = random.Random(seed)
        self._hands, self._drag_source, self._materials = hands, drag_source, materials
        self._change_scheme = change_scheme
        self.program: Application

    def act(self, view: View) -> tuple[str, Expectation | None, bool]:
        """Does one thing. @return what it was, what must come of it, and whether to look before the next"""
        choices = self._choices(view)
        action = self._random.choices([action for action, _ in choices], [weight for _, weight in choices])[0]
        name = action.__name__.strip("_")
        try:
            what, expectation = action(view)
        except (Gone, AssertionError) as error:  # it has closed or gone grey meanwhile, as users see it too late
            return f"{name}: {error}", None, True
        looks = name not in BLIND or what.startswith(OPENING) or expectation is not None or bool(view.panel)
        return f"{name} {what}", expectation, looks

    def _choices(self, view: View) -> list[tuple[Callable, int]]:
        if view.panel:
            is_question = not any(element.role == "text" for element in view.panel)
            return ([(self._answer, 4), (self._escape, 1)] if is_question else
                    [(self._type_path, 5), (self._escape, 2), (self._press_in_panel, 3), (self._drop, 1)])
        if view.of_role("list item"):
            return [(self._press_popup_key, 5), (self._type_letters, 2), (self._choose_entry, 5), (self._scroll, 2),
                    (self._click_anywhere, 1), (self._resize, 1)]
        if len(view.of_role("menu item")) > 2:
            return [(self._press_menu_key, 5), (self._choose_menu_entry, 5), (self._click_anywhere, 1)]
        choices = [(self._click, 20), (self._press, 20), (self._press_key, 22), (self._click_anywhere, 3),
                   (self._drop, 6), (self._drag_timeline, 5), (self._nudge_timeline, 3), (self._open_picker, 6),
                   (self._type_letters, 3), (self._open_menu, 3), (self._resize, 2), (self._scroll, 2),
                   (self._set_helper, 3), (self._end_helpers, 2), (self._choose_scheme, 1), (self._focus, 4),
                   (self._browse, 2), (self._convert, 4)]
        return choices + [(self._escape, 12)] if view.has_about else choices

    def _pick(self, values: list | tuple) -> object:
        return self._random.choice(values)

    # Buttons

    def _button(self, view: View) -> Element:
        return self._pick(view.of_role("push button"))

    def _click(self, view: View) -> tuple[str, Expectation | None]:
        button = self._button(view)
        self._hands.click(button.area.middle)
        return button.name, self._after(button)

    def _press(self, view: View) -> tuple[str, Expectation | None]:
        button = self._button(view)
        button.press()
        return button.name, self._after(button)

    def _after(self, button: Element) -> Expectation | None:
        if button.name == "Clear":
            return lambda view: view.panel or view.has_about or not Promises(view, self._materials.names).is_loaded
        return None

    def _browse(self, view: View) -> tuple[str, Expectation | None]:
        self._hands.keys("ctrl+o")
        return "", lambda after: bool(after.panel)

    def _convert(self, view: View) -> tuple[str, Expectation | None]:
        button = view.button("Convert", "Rendering...")
        button.press()
        return button.name, None

    # Keyboard and mouse

    def _press_key(self, view: View) -> tuple[str, None]:
        key = self._pick(KEYBOARD)
        self._hands.keys(*[key] * self._pick((1, 1, 1, 2, 5)))
        return key, None

    def _focus(self, view: View) -> tuple[str, None]:
        element = self._pick(view.of_role("push button") + view.of_role("combo box") + view.of_role("slider"))
        element.focus()
        return element.name, None

    def _escape(self, view: View) -> tuple[str, None]:
        self._hands.keys("Escape")
        return "", None

    def _place(self, view: View) -> tuple[int, int]:
        area = view.main[0].area
        return (self._random.randrange(area.x, area.right), self._random.randrange(area.y, area.bottom))

    def _click_anywhere(self, view: View) -> tuple[str, None]:
        place = self._place(view)
        self._hands.click(place)
        return str(place), None

    def _scroll(self, view: View) -> tuple[str, None]:
        place = self._place(view)
        self._hands.scroll(place, self._pick((-5, -1, 1, 5)))
        return str(place), None

    def _resize(self, view: View) -> tuple[str, None]:
        size = self._pick(SIZES)
        for window in self._hands.windows(self.program.process.pid):
            if self._hands.window_name(window) == "Tonvale":
                self._hands.resize(window, *size)
        return str(size), None

    # The timeline

    def _drag_timeline(self, view: View) -> tuple[str, None]:
        area = view.of_role("slider")[0].area
        places = [(area.x + self._random.randrange(area.width), area.middle[1] + self._random.randrange(-20, 20))
                  for _ in range(self._pick((1, 2, 4)))]
        self._hands.drag((places[0][0], area.middle[1]), *places)
        return str(places), None

    def _nudge_timeline(self, view: View) -> tuple[str, None]:
        action = self._pick(("Increase", "Decrease"))
        view.of_role("slider")[0].act(action)
        return action, None

    # Pickers

    def _open_picker(self, view: View) -> tuple[str, None]:
        picker = self._pick(view.of_role("combo box"))
        if self._pick((True, False)):
            picker.press()
        else:
            self._hands.click(picker.area.middle)
        return picker.name, None

    def _press_popup_key(self, view: View) -> tuple[str, None]:
        key = self._pick(POPUP_KEYS)
        self._hands.keys(key)
        return key, None

    def _type_letters(self, view: View) -> tuple[str, None]:
        letters = self._pick(LETTERS)
        self._hands.type(letters)
        return letters, None

    def _choose_entry(self, view: View) -> tuple[str, Expectation]:
        entry = self._pick(view.of_role("list item"))
        entry.press()
        return entry.name, lambda after: entry.name in after.descriptions.values() or bool(after.of_role("list item"))

    # Menus

    def _open_menu(self, view: View) -> tuple[str, None]:
        menu = self._pick(view.of_role("menu item"))
        if self._pick((True, False)):
            menu.press()
        else:
            self._hands.keys(f"alt+{menu.name[0].lower()}")
        return menu.name, None

    def _press_menu_key(self, view: View) -> tuple[str, None]:
        key = self._pick(MENU_KEYS)
        self._hands.keys(key)
        return key, None

    def _choose_menu_entry(self, view: View) -> tuple[str, None]:
        item = self._pick([item for item in view.of_role("menu item") if "Quit" not in item.name])
        if self._pick((True, False)):
            item.press()
        else:
            self._hands.click(item.area.middle)
        return item.name, None

    # Files

    def _drop(self, view: View) -> tuple[str, Expectation | None]:
        offer = self._materials.offer(self._random)
        button = view.button("Browse files").area
        taken = self._drag_source.drop(offer, (button.x - 40, button.y - 60))
        name = unquote(Path(offer["data"].split("\r\n")[0]).name)
        if taken and name in self._materials.names:
            # A panel that opened just then has kept the song out.
            return name, lambda after: bool(after.panel) or Promises(after, self._materials.names).track[1] == name
        return f"{name}, taken: {taken}", None

    def _type_path(self, view: View) -> tuple[str, None]:
        is_saving = view.panel[0].name == "Save Transposed Song"
        path = self._materials.destination(self._random) if is_saving else self._materials.file(self._random)
        self._hands.keys("ctrl+a")
        self._hands.type(str(path))
        self._hands.keys("Return")
        return str(path), None

    def _press_in_panel(self, view: View) -> tuple[str, None]:
        names = ("Open", "Save", "Cancel", "Back", "Parent Directory", "List View", "Detail View")
        button = self._pick([part for part in view.panel if part.role == "push button"
                             and part.name.replace("&", "") in names])
        button.press()
        return button.name, None

    def _answer(self, view: View) -> tuple[str, None]:
        button = self._pick([part for part in view.panel if part.role == "push button"])
        button.press()
        return button.name, None

    # The desktop

    def _set_helper(self, view: View) -> tuple[str, None]:
        helper = self._pick(HELPERS)
        self._materials.set_helper(helper)
        return str(helper)[-30:], None

    def _end_helpers(self, view: View) -> tuple[str, None]:
        return str(self._materials.end_helpers(self.program.process.pid)), None

    def _choose_scheme(self, view: View) -> tuple[str, None]:
        scheme = self._pick((1, 2))
        self._change_scheme(scheme)
        return str(scheme), None
