# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Detection helpers that crash, hang, babble or lie: what the window says of them, and what they leave behind."""

import os
from pathlib import Path

import detection
import processes
import songs
from processes import wait_until
from test_detecting import DetectionCase

NO_ANSWER = "Key detection failed."
UNREADABLE = "The key detector returned an unreadable result."
NO_JSON = "illegal value"  # the words of the JSON parser
LONG_TEXT = "word " * 10000  # what a pipe still holds

# What they do, and what the window says then.
THAT_END = {
    "crashes": ("import os, signal\nos.kill(os.getpid(), signal.SIGSEGV)", NO_ANSWER),
    "crashes behind its answer": (detection.ANSWER + "\nimport os\nos.abort()", NO_ANSWER),
    "answers, and exits with 3": (detection.ANSWER + "\nraise SystemExit(3)", NO_ANSWER),
    "says nothing": ("", NO_JSON),
    "closes its output at once": ("import os\nos.close(1)\nos._exit(0)", NO_JSON),
    "answers in Latin-1": ("import os\nos.write(1, b'{\"key\": \"A\", \"scale\": \"m\\xf6ll\"}')", NO_JSON),
    "prints half a line": ("""print('{"key": "A", "sca', end="")""", "unterminated string"),
    "chats before its answer": ("print('Listening...')\n" + detection.ANSWER, NO_JSON),
    "answers twice": (detection.ANSWER + "\n" + detection.ANSWER, "garbage at the end of the document"),
    "nests without end": ("print('[' * 60000)", "too deeply nested document"),
    "answers with a list": ("print('[\"A\", \"minor\", 0.82]')", UNREADABLE),
    "gives words for numbers": ("""print('{"key": "A", "scale": "minor", "keyConfidence": "much"}')""", UNREADABLE),
    "gives numbers for words": ("""print('{"key": 9, "scale": "minor", "keyConfidence": 0.8}')""", UNREADABLE),
    "complains in mark-up": ("""print('{"error": "<b>bold</b> &amp; <img src=x>"}')\nraise SystemExit(1)""",
                             "<b>bold</b> &amp; <img src=x>"),
    "complains at length": (f"import sys\nsys.stderr.write({LONG_TEXT!r})\nraise SystemExit(1)", LONG_TEXT),
}

GIBIBYTE = "import os\nfor _ in range(1 << 14):\n    os.write({descriptor}, bytes(1 << 16))\n"
CHILD_WITH_THE_PIPES = """import os, signal
if os.fork() == 0:
    signal.pause()
""" + detection.ANSWER
CHILD_OF_ITS_OWN = """import os, signal
if os.fork() == 0:
    for descriptor in (0, 1, 2):
        os.close(descriptor)
    signal.pause()
    os._exit(0)
""" + detection.ANSWER


def read_link(link: Path) -> str:
    try:
        return os.readlink(link)
    except FileNotFoundError:
        return ""  # closed meanwhile


class BadHelperCase(DetectionCase):
    def pipes(self) -> set[str]:
        """The pipes that the program holds."""
        folder = Path(f"/proc/{self.program.process.pid}/fd")
        return {target for link in folder.iterdir() if (target := read_link(link)).startswith("pipe:")}

    def children(self) -> list[int]:
        """The program's children, ended ones that nobody has asked after included."""
        return [child for child, parent in processes.parents().items() if parent == self.program.process.pid]


class BadHelperTest(BadHelperCase):
    def test_every_one_that_ends_is_reported_and_forgotten(self):
        self.load_tone()
        pipes = self.pipes()
        for name, (helper, message) in THAT_END.items():
            with self.subTest(name):
                self.detect(helper)
                self.program.wait_for_text(message, "No shift", "File loaded")
                self.program.wait_for_enabled("Auto Detect Song Details")
                self.assertEqual(self.children(), [])
                self.assertEqual(self.pipes(), pipes)
        self.detect(detection.ANSWER)
        self.program.wait_for_text("Key  : A minor - Confidence 82%")

    def test_one_that_leaves_a_child_of_its_own_has_answered(self):
        self.load_tone()
        pipes = self.pipes()
        self.detect(CHILD_OF_ITS_OWN)
        self.program.wait_for_text("Key  : A minor - Confidence 82%")
        self.assertEqual(self.children(), [])
        self.assertEqual(self.pipes(), pipes)


class EndlessHelperTest(BadHelperCase):
    """Nothing ends them, so the window detects on, and everything else works."""

    def go_through_everything(self, helper: str) -> None:
        self.load_tone(seconds=5)
        pipes = self.pipes()
        self.detect(helper)
        self.program.wait_for_text("Detecting song details...")
        wait_until(lambda: len(self.pipes() - pipes) == 2, "the helper's two pipes")
        held = self.pipes() - pipes
        self.program.press("Play preview")
        self.assert_hears(songs.CONCERT_PITCH)
        self.load(self.tone("next.wav", seconds=1))
        self.save_as(self.folder / "saved.wav")
        self.program.wait_for_text("Saved 0 semitones")
        self.program.wait_for_enabled("Detecting...", False)
        self.program.press("Clear")
        self.load(self.tone("last.wav"))
        self.detect(detection.ANSWER)  # beside the other
        self.program.wait_for_text("Key  : A minor - Confidence 82%")
        self.assertLessEqual(held, self.pipes(), "the first is still waited for")
        self.assertLessEqual(len(self.children()), 1, "nothing of the second is left")

    def test_one_that_hangs(self):
        self.go_through_everything(detection.HANG)

    def test_one_that_hangs_behind_its_answer(self):
        self.go_through_everything(detection.ANSWER.replace("')", "', flush=True)") + "\n" + detection.HANG)

    def test_one_that_prints_a_gibibyte(self):
        self.go_through_everything(GIBIBYTE.format(descriptor=1))

    def test_one_that_complains_for_a_gibibyte(self):
        self.go_through_everything(GIBIBYTE.format(descriptor=2))

    def test_one_that_leaves_its_output_to_a_child(self):
        self.go_through_everything(CHILD_WITH_THE_PIPES)
