# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Songs good and bad, places to save at, and detection helpers."""

from __future__ import annotations

import os
import random
import signal
from pathlib import Path

import detection
import songs
from dragging import links
from processes import parents, signal_descendant

LINK = {"type": "text/uri-list", "data": "https://tonvale.example/song.mp3\r\n"}
TEXT = {"type": "text/plain", "data": "some words"}


class Materials:
    def __init__(self, folder: Path, helper: Path) -> None:
        self._folder, self._helper = folder, helper
        self.set_helper(detection.FAILURE)
        self._songs = [songs.tone(folder / "Night Song.wav", 20), songs.tone(folder / "50% #1 ? b.wav", 75),
                       songs.tone(folder / "half.wav", 0.5), songs.tone(folder / "three halves.wav", 1.5),
                       songs.tone(folder / "empty.wav", 0), songs.tone(folder / "frame.wav", 1 / songs.RATE),
                       songs.silence(folder / "long.wav", 0.2), songs.tone(folder / "Song", 4)]
        cut = folder / "cut.wav"
        cut.write_bytes((folder / "Night Song.wav").read_bytes()[:200000])
        self._songs.append(cut)
        self.names = frozenset(song.name for song in self._songs)
        note, broken, album = folder / "note.wav", folder / "broken.MP3", folder / "album.mp3"
        note.write_text("This is no song, whatever its name says.\n")
        broken.write_bytes(b"")
        album.mkdir()
        self._others = [note, broken, album, folder / "missing.mp3", folder]

    def file(self, randomly: random.Random) -> Path:
        return randomly.choice(self._songs * 2 + self._others)

    def offer(self, randomly: random.Random) -> dict[str, str]:
        """What is dragged over the window: one file, several, or none."""
        files = [self.file(randomly) for _ in range(randomly.choice((1, 1, 1, 3)))]
        return randomly.choice([links(*files)] * 8 + [LINK, TEXT])

    def destination(self, randomly: random.Random) -> Path | str:
        """A place to save at: new, taken, of the song itself, a folder, or refused."""
        names = ("saved.out", "other.out.wav", "new folder/saved.wav", "album.mp3", "half.wav")
        return randomly.choice([self._folder / name for name in names] + ["/sys/saved.wav"])

    def set_helper(self, script: str) -> None:
        # In one go: the program may be starting it at this moment.
        fresh = self._helper.with_suffix(".new")
        fresh.write_text(script)
        os.replace(fresh, self._helper)

    def end_helpers(self, program: int) -> int:
        """Ends the helpers that wait. @return how many"""
        helpers = [child for child, parent in parents().items() if parent == program]
        for helper in helpers:
            signal_descendant(helper, signal.SIGKILL)
        return len(helpers)
