# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the tests of the window share: a desktop for each class of tests, the program anew for each test."""

from __future__ import annotations

import os
import unittest
from pathlib import Path
from typing import Any, ClassVar

import songs
from accessibility import Element
from application import Application, Installation
from desktop import Desktop
from dragging import DragSource, links
from hands import Hands
from processes import wait_until
from sound import Recorder, cents

PROGRAM = "TONVALE"  # the environment variable that says where the program is
PITCH_CENTS = 3.0  # a listener hears five; the way through engine, server and measurement takes less than one
KEYS = [f"{note} {mode}" for mode in ("major", "minor")
        for note in ("C", "C# / Db", "D", "D# / Eb", "E", "F", "F# / Gb", "G", "G# / Ab", "A", "A# / Bb", "B")]
SAVE_PANEL = "Save Transposed Song"


class WindowTestCase(unittest.TestCase):
    environment: ClassVar[dict[str, str | None]] = {}  # what the program sees besides the desktop's
    watcher: tuple[str, ...] = ()  # a command that becomes the program

    @classmethod
    def setUpClass(cls) -> None:
        if PROGRAM not in os.environ:
            raise unittest.SkipTest(f"the environment variable {PROGRAM} names no program")
        cls.desktop = Desktop()
        cls.addClassCleanup(cls.desktop.close)
        cls.installation = Installation(cls.desktop.folder / "installation", Path(os.environ[PROGRAM]))
        cls.hands = Hands(cls.desktop.environment)
        cls.screen = cls.desktop.screen
        cls._drag_source: DragSource | None = None

    def setUp(self) -> None:
        self.folder = self.desktop.make_folder(self.id().rpartition(".")[2])
        self.program = self.start()

    def start(self, name: str = "program") -> Application:
        """@param name  of the folder for what it may write, new for each start"""
        program = Application(self.desktop, self.installation, self.folder / name, self.environment,
                              self.watcher)
        self.addCleanup(program.kill)
        return program

    def tearDown(self) -> None:
        """However a test has used it, the program quits when told to, has not printed a word and left no file."""
        if self.program.process.poll() is None:
            self.program.wait_for_keyboard()
            self.hands.keys("ctrl+q")
            self.assertEqual(self.program.wait_for_end(), 0)
        self.assertEqual(self.program.output, "")
        self.assertEqual(self.program.files_written, [])

    @property
    def drag_source(self) -> DragSource:
        if self._drag_source is None:
            type(self)._drag_source = DragSource(self.desktop, self.hands)
            self.addClassCleanup(self._drag_source.close)
        return self._drag_source

    # Songs

    def tone(self, name: str = "Night Song.wav", seconds: float = 120) -> Path:
        """Unless told otherwise, so long that it still plays when a busy machine comes to press "Stop"."""
        return songs.tone(self.folder / name, seconds)

    def drop_place(self) -> tuple[int, int]:
        """A point of the drop panel that shows nothing."""
        button = self.program.button("Browse files").area
        return button.x - 40, button.y - 60

    def drop(self, *files: Path) -> bool:
        return self.drag_source.drop(links(*files), self.drop_place())

    def load(self, song: Path) -> None:
        """Drops a song and waits until it is loaded."""
        self.drop(song)
        self.program.wait_for_text(song.name, "File loaded")

    def load_tone(self, **options: Any) -> Path:
        song = self.tone(**options)
        self.load(song)
        return song

    # Keys

    def choose_key(self, picker: str, name: str) -> None:
        self.open_picker(picker)
        self.hands.keys("Home", *["Down"] * KEYS.index(name), "Return")
        self.wait_for_key(picker, name)
        self.wait_for_closed_pickers()

    def open_picker(self, picker: str) -> None:
        self.focus("combo box", picker)
        self.hands.keys("space")
        self.program.find("list item", KEYS[0])

    def focus(self, role: str, name: str) -> None:
        self.program.find(role, name).focus()
        self.program.wait_for_focus(role, name)

    def wait_for_key(self, picker: str, name: str) -> None:
        wait_until(lambda: self.chosen_key(picker) == name, lambda: f"{picker} {name}, it is {self.chosen_key(picker)}")

    def wait_for_closed_pickers(self) -> None:
        wait_until(lambda: not any(element.role == "list item" for element in self.program.elements()),
                   "closed pickers")

    def chosen_key(self, picker: str) -> str:
        """What a screen reader says that the picker stands on."""
        return self.program.find("combo box", picker).description

    def transpose(self, recorded: str, new: str) -> None:
        self.choose_key("Recorded key", recorded)
        self.choose_key("New key", new)

    # Sound

    @property
    def recorder(self) -> Recorder:
        return self.desktop.recorder

    def assert_hears(self, hz: float) -> None:
        """Waits until a pitch is heard, and nothing else, for most of a second."""
        def is_heard() -> bool:
            heard = self.recorder.pitch(0.8)
            return heard is not None and abs(cents(heard, hz)) < PITCH_CENTS
        wait_until(is_heard, lambda: f"{hz:.2f} Hz, {self.recorder.pitch(0.8)} is heard")

    def assert_silent(self) -> None:
        wait_until(lambda: self.recorder.pitch(0.3) is None, lambda: f"silence, {self.recorder.pitch(0.3)} Hz is heard")

    # Panels

    def accept_panel(self, title: str, file: Path | str) -> None:
        self.fill_panel(title, file)
        self.hands.keys("Return")

    def fill_panel(self, title: str, file: Path | str) -> None:
        """Types a file's name into a file panel, over what stands there."""
        self.program.dialog(title)
        self.program.wait_for_focus("text", "File name:")
        self.hands.keys("ctrl+a")
        self.hands.type(str(file))
        wait_until(lambda: (field := self.program.look("text", "File name:")) and field.text == str(file),
                   f"the file name {str(file)!r} in the panel")

    def press_in_question(self, answer: str) -> None:
        self.answer_button(answer).press()

    def answer_button(self, answer: str) -> Element:
        """Of the question whether a file is to be replaced."""
        def button() -> Element | None:
            return next((element for element in self.program.elements()
                         if element.role == "push button" and element.name.replace("&", "") == answer), None)
        return wait_until(button, lambda: f"the question among\n{self.program.describe()}")

    def save_as(self, file: Path | str) -> None:
        self.press_convert()
        self.accept_panel(SAVE_PANEL, file)

    def press_convert(self) -> None:
        self.convert_button().press()

    def convert_button(self) -> Element:
        """The button that saves, whatever it says just now."""
        def find() -> Element | None:
            return next((element for element in self.program.elements() if element.role == "push button"
                         and element.name.startswith(("Convert", "Rendering..."))), None)
        return wait_until(find, "the convert button")

    # The window

    def window(self) -> int:
        windows = self.hands.windows(self.program.process.pid)
        return next(window for window in windows if self.hands.window_name(window) == "Tonvale")
