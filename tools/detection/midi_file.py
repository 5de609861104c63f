# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads and writes the Standard MIDI Files that the training recordings are rendered from."""

from __future__ import annotations

import struct
from dataclasses import dataclass, field
from pathlib import Path

META, SYSEX, ESCAPE = 0xFF, 0xF0, 0xF7
NOTE_OFF, NOTE_ON, CONTROL, PROGRAM, PRESSURE = 0x8, 0x9, 0xB, 0xC, 0xD
SET_TEMPO, END_OF_TRACK = 0x51, 0x2F
DRUM_CHANNEL = 9

# One event: (tick, status byte, data bytes); of a meta event the first data byte is its type.
Event = tuple[int, int, bytes]


@dataclass
class Song:
    """A parsed MIDI file: ticks per quarter note and one list of events per track."""

    division: int = 480
    tracks: list[list[Event]] = field(default_factory=list)


@dataclass(frozen=True)
class Note:
    """One sounding note, in ticks."""

    start: int
    end: int
    pitch: int
    velocity: int


def _read_length(data: bytes, at: int) -> tuple[int, int]:
    """Variable-length quantity at `at`; the value and the position behind it."""
    value = 0
    while True:
        byte = data[at]
        at += 1
        value = value << 7 | byte & 0x7F
        if byte < 0x80:
            return value, at


def _read_track(data: bytes) -> list[Event]:
    events: list[Event] = []
    at = tick = status = 0
    while at < len(data):
        delta, at = _read_length(data, at)
        tick += delta
        if data[at] >= 0x80:  # else running status: the last status byte still holds
            status = data[at]
            at += 1
        if status == META:
            kind = data[at : at + 1]
            size, at = _read_length(data, at + 1)
            events.append((tick, META, kind + data[at : at + size]))
        elif status in (SYSEX, ESCAPE):
            size, at = _read_length(data, at)
        else:
            size = 1 if status >> 4 in (PROGRAM, PRESSURE) else 2
            events.append((tick, status, data[at : at + size]))
        at += size
    return events


def read(path: Path) -> Song:
    data = path.read_bytes()
    count, division = struct.unpack(">HH", data[10:14])
    song, at = Song(division), 14
    for _ in range(count):
        size = struct.unpack(">I", data[at + 4 : at + 8])[0]
        song.tracks.append(_read_track(data[at + 8 : at + 8 + size]))
        at += 8 + size
    return song


def _length_bytes(value: int) -> bytes:
    out = bytes([value & 0x7F])
    while value := value >> 7:
        out = bytes([value & 0x7F | 0x80]) + out
    return out


def _track_bytes(events: list[Event]) -> bytes:
    out, last = bytearray(), 0
    for tick, status, data in sorted(events, key=lambda event: event[0]):
        if status == META and data[0] == END_OF_TRACK:
            continue
        out += _length_bytes(tick - last) + bytes([status])
        out += data[:1] + _length_bytes(len(data) - 1) + data[1:] if status == META else data
        last = tick
    out += b"\x00\xff\x2f\x00"
    return b"MTrk" + struct.pack(">I", len(out)) + bytes(out)


def write(song: Song, path: Path) -> None:
    header = b"MThd" + struct.pack(">IHHH", 6, 1, len(song.tracks), song.division)
    path.write_bytes(header + b"".join(_track_bytes(track) for track in song.tracks))


def channel_of(track: list[Event]) -> int | None:
    """The channel of the track's first note, or None when it has no notes."""
    for _, status, _ in track:
        if status >> 4 == NOTE_ON:
            return status & 15
    return None


def notes_of(track: list[Event]) -> list[Note]:
    """The track's notes, each from its note-on to its note-off, by start."""
    open_notes: dict[int, tuple[int, int]] = {}
    notes: list[Note] = []
    for tick, status, data in track:
        if status >> 4 not in (NOTE_ON, NOTE_OFF):
            continue
        if data[0] in open_notes:
            start, velocity = open_notes.pop(data[0])
            notes.append(Note(start, tick, data[0], velocity))
        if status >> 4 == NOTE_ON and data[1] > 0:
            open_notes[data[0]] = (tick, data[1])
    return sorted(notes, key=lambda note: note.start)


def seconds_per_tick(song: Song) -> float:
    """From the first tempo event; the corpus keeps one tempo per song."""
    for track in song.tracks:
        for _, status, data in track:
            if status == META and data[0] == SET_TEMPO:
                return int.from_bytes(data[1:4], "big") / 1e6 / song.division
    return 0.5 / song.division
