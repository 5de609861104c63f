# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Drags things from another program's window."""

from __future__ import annotations

import json
import queue
import subprocess
import threading
from pathlib import Path
from typing import TYPE_CHECKING, Any

if TYPE_CHECKING:
    from desktop import Desktop
    from hands import Hands

PLACE = (1520, 1120)  # the lower right corner, where no other window is
ANSWER_SECONDS = 20.0
HOVER_SECONDS, HOVER_MOVES = 2.0, 20


def links(*files: Path) -> dict[str, str]:
    """What a file manager offers for these files."""
    return {"type": "text/uri-list", "data": "".join(file.as_uri() + "\r\n" for file in files)}


class DragSource:
    def __init__(self, desktop: Desktop, hands: Hands) -> None:
        self._hands = hands
        self._program = desktop.start("/usr/bin/python3", str(Path(__file__).with_name("drag_source.py")),
                                      *map(str, PLACE), stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                                      bufsize=1)
        self._lines: queue.Queue[str] = queue.Queue()
        threading.Thread(target=self._read, daemon=True).start()
        self._wait_for("shown")

    def _answer(self, seconds: float = ANSWER_SECONDS) -> dict[str, Any]:
        """The next thing that the source tells; nothing if it has nothing to tell for so long."""
        try:
            line = self._lines.get(timeout=seconds)
        except queue.Empty:
            return {}
        if not line:
            raise AssertionError("the drag's source has ended")
        return json.loads(line)

    def _read(self) -> None:
        with self._program.stdout as lines:
            for line in lines:
                self._lines.put(line)
        self._lines.put("")

    def _wait_for(self, key: str) -> dict[str, Any]:
        while key not in (answer := self._answer()):
            if not answer:
                raise AssertionError(f"the drag's source does not tell {key!r}")
        return answer

    def hover(self, offer: dict[str, str], place: tuple[int, int]) -> str:
        """Drags up to a place and holds the button.
        @return  what would be done there with the offer, "copy" or "none"
        """
        self._program.stdin.write(json.dumps(offer) + "\n")
        self._wait_for("offered")
        x, y = PLACE
        self._hands.move((x + 30, y + 30))
        self._hands.press()
        for step in (1, 2):  # beyond the distance that begins a drag
            self._hands.move((x + 30 - 15 * step, y + 30 - 15 * step))
        # The window has a while to make up its mind; that it refuses is told by silence.
        for step in range(HOVER_MOVES):
            self._hands.move((place[0] + step % 3, place[1]))
            answer = self._answer(HOVER_SECONDS / HOVER_MOVES)
            if answer.get("action", "none") != "none":
                return answer["action"]
        return "none"

    def release(self) -> bool:
        """Lets go. @return whether the offer was taken"""
        self._hands.release()
        return self._wait_for("accepted")["accepted"]

    def drop(self, offer: dict[str, str], place: tuple[int, int]) -> bool:
        self.hover(offer, place)
        return self.release()

    def close(self) -> None:
        self._program.stdin.close()
        self._program.wait(ANSWER_SECONDS)
