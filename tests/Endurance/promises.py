# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the window promises at every moment, whatever was done to it."""

from __future__ import annotations

import re
from collections.abc import Iterator

from cases import KEYS
from reader import View

HINTS = {True: "Drag the timeline or use the skip buttons to jump through the song.",
         False: "Select an audio file to preview the transposed playback."}
STATUS = {True: "File loaded", False: "No file selected"}
EMPTY_NAMES = ("Waiting for audio", "Could not load audio", "Export failed")
FAILURES = ("Preview failed", "Export failed")
EXPORT = re.compile(r"(Rendering|Saved) ((0|[+-][2-6]) semitones|[+-]1 semitone)|Export failed")
DETECTING = "Detecting song details..."
MESSAGES = (DETECTING, "The song is too short.", "Key detection failed.",
            "Detected H minor, but it could not be mapped to the app's key list.",
            "The key detector returned an unreadable result.", "illegal value")
LINES = ["Key  : A minor - Confidence 82%", "Tempo  : 122 BPM - Unverified"]
SHORT_NAMES = ("C", "C#", "D", "Eb", "E", "F", "F#", "G", "Ab", "A", "Bb", "B")
TIME = re.compile(r"(\d+):([0-5]\d)")


def semitones(recorded: str, new: str) -> int:
    difference = KEYS.index(new) % 12 - KEYS.index(recorded) % 12
    return difference - 12 if difference > 6 else difference + 12 if difference < -6 else difference


def seconds(text: str) -> int:
    minutes, rest = TIME.fullmatch(text).groups()
    return 60 * int(minutes) + int(rest)


def time_text(value: float) -> str:
    whole = int(value + 0.5)
    return f"{whole // 60}:{whole % 60:02}"


class Promises:
    def __init__(self, view: View, songs: frozenset[str]) -> None:
        self._view, self._songs = view, songs
        texts = view.texts
        track, keys, preview = (texts.index(heading) for heading in ("Track", "Keys", "Preview"))
        self.track, self.keys, self.preview = texts[track + 1 : keys], texts[keys + 1 : preview], texts[preview + 1 :]
        self.is_loaded = self.track[0] == "File loaded"

    def broken(self) -> list[str]:
        return [text for part in (self._track, self._detection, self._keys, self._preview, self._header, self._windows)
                for text in part()]

    def _track(self) -> Iterator[str]:
        status, name, detail = self.track[:3]
        if status != STATUS[self.is_loaded]:
            yield f"the file's status is {status!r}"
        if name not in (self._songs.union(FAILURES) if self.is_loaded else EMPTY_NAMES):
            yield f"the file's name is {name!r}"
        if not detail:
            yield "the file has no detail"

    def _detection(self) -> Iterator[str]:
        button = self._view.button("Auto Detect Song Details", "Detecting...")
        if button is None:
            yield "nothing detects"
            return
        is_detecting = button.name == "Detecting..."
        if button.enabled != (self.is_loaded and not is_detecting):
            yield f"{button.name!r} is enabled: {button.enabled}"
        rest = self.track[3:]
        if not (not rest or rest == LINES or len(rest) == 1 and rest[0] in MESSAGES):
            yield f"the detection says {rest}"
        if is_detecting and rest not in ([], [DETECTING]) or not is_detecting and DETECTING in rest:
            yield f"{button.name!r} and {rest}"

    def _keys(self) -> Iterator[str]:
        pill, recorded_label, recorded, new_label, new, interval, cents, figure = self.keys
        if (recorded_label, new_label) != ("Recorded key", "New key"):
            yield f"the pickers are {recorded_label!r} and {new_label!r}"
        if self._view.descriptions != {"Recorded key": recorded, "New key": new}:
            yield f"a screen reader hears {self._view.descriptions}, shown are {recorded!r} and {new!r}"
        if recorded not in KEYS or new not in KEYS:
            yield f"the keys are {recorded!r} and {new!r}"
            return
        shift = semitones(recorded, new)
        expected = [f"{shift:+} semitones" if shift else "No shift",
                    f"{'Up' if shift > 0 else 'Down'} {abs(shift)} semitone{'s' if abs(shift) != 1 else ''}." if shift
                    else "The selected keys are the same.",
                    f"Pitch shift {100 * shift} cents", f"{shift:+}" if shift else "0"]
        if [pill, interval, cents, figure] != expected:
            yield f"{recorded} to {new} is {[pill, interval, cents, figure]}"

    def _preview(self) -> Iterator[str]:
        status, hint, elapsed, total = self.preview
        button = self._view.button("Play preview", "Stop")
        is_playing = status == "Playing"
        if not (is_playing or EXPORT.fullmatch(status) or status == ("Ready" if self.is_loaded else "Unavailable")):
            yield f"the preview's status is {status!r}"
        if button is None or button.name != ("Stop" if is_playing else "Play preview"):
            yield f"{status!r} and the button {button and button.name!r}"
        if is_playing and not self.is_loaded:
            yield "it plays without a song"
        if hint != HINTS[self.is_loaded]:
            yield f"the hint is {hint!r}"
        controls = [button, self._view.button("Back 15 seconds"), self._view.button("Forward 15 seconds"),
                    next(iter(self._view.of_role("slider")), None)]
        if any(control is None or control.enabled != self.is_loaded for control in controls):
            yield f"the controls are {controls}"
        yield from self._times(elapsed, total)

    def _times(self, elapsed: str, total: str) -> Iterator[str]:
        if not (TIME.fullmatch(elapsed) and TIME.fullmatch(total)) or seconds(elapsed) > seconds(total):
            yield f"the times are {elapsed!r} and {total!r}"
            return
        if not self.is_loaded and (elapsed, total) != ("0:00", "0:00"):
            yield f"the times without a song are {elapsed!r} and {total!r}"
        position, end = self._view.position or (-1, -1)
        if not 0 <= position <= end or time_text(position) != elapsed or end < 1:
            yield f"the timeline is at {position} of {end}, the texts say {elapsed!r} of {total!r}"
        if end > 1 and time_text(end) != total:
            yield f"the timeline ends at {end}, the text says {total!r}"

    def _header(self) -> Iterator[str]:
        button = self._view.button("Convert", "Rendering...")
        if button is None:
            yield "nothing converts"
            return
        short = SHORT_NAMES[KEYS.index(self.keys[4]) % 12]
        is_rendering = button.name == "Rendering..."
        if not is_rendering and button.name != (f"Convert to {short}" if self.is_loaded else "Convert"):
            yield f"the button says {button.name!r}, the new key is {self.keys[4]!r}"
        if button.enabled != (self.is_loaded and not is_rendering):
            yield f"{button.name!r} is enabled: {button.enabled}"
        if self.preview[0].startswith("Rendering") and not is_rendering:
            yield f"{self.preview[0]!r} and {button.name!r}"
        others = [self._view.button("Clear"), self._view.button("Browse files")]
        if any(other is None or not other.enabled for other in others):
            yield f"the other buttons are {others}"

    def _windows(self) -> Iterator[str]:
        names = [window.name for window in self._view.windows]
        if names.count("Tonvale") != 1 or names.count("About Tonvale") > 1:
            yield f"the windows are {names}"
