# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Drags things from another program's window."""

from __future__ import annotations

import json
import select
import subprocess
from pathlib import Path
from typing import TYPE_CHECKING, Any

if TYPE_CHECKING:
    from desktop import Desktop
    from hands import Hands

PLACE = (1520, 1120)  # the lower right corner, where no other window is
ANSWER_SECONDS = 20.0


def links(*files: Path) -> dict[str, str]:
    """What a file manager offers for these files."""
    return {"type": "text/uri-list", "data": "".join(file.as_uri() + "\r\n" for file in files)}


class DragSource:
    def __init__(self, desktop: Desktop, hands: Hands) -> None:
        self._hands = hands
        self._program = desktop.start("/usr/bin/python3", str(Path(__file__).with_name("drag_source.py")),
                                      *map(str, PLACE), stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, bufsize=1)
        self._answer()

    def _answer(self) -> dict[str, Any]:
        if not select.select([self._program.stdout], [], [], ANSWER_SECONDS)[0]:
            raise AssertionError("the drag's source does not answer")
        line = self._program.stdout.readline()
        if not line:
            raise AssertionError("the drag's source has ended")
        return json.loads(line)

    def hover(self, offer: dict[str, str], place: tuple[int, int]) -> None:
        """Drags up to a place and holds the button."""
        self._program.stdin.write(json.dumps(offer) + "\n")
        self._answer()
        x, y = PLACE
        self._hands.move((x + 30, y + 30))
        self._hands.press()
        for step in (1, 2):  # beyond the distance that begins a drag
            self._hands.move((x + 30 - 15 * step, y + 30 - 15 * step))
        for step in (4, 0, 2):  # over the target more than once: the first moves only make the two meet
            self._hands.move((place[0] + step, place[1]))

    def release(self) -> dict[str, Any]:
        """Lets go. @return "accepted" and, when it was, the "action" """
        self._hands.release()
        return self._answer()

    def drop(self, offer: dict[str, str], place: tuple[int, int]) -> dict[str, Any]:
        self.hover(offer, place)
        return self.release()

    def close(self) -> None:
        self._program.stdin.close()
        self._program.wait(ANSWER_SECONDS)
        self._program.stdout.close()
