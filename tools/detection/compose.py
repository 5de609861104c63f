# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Composes short pieces in known keys, in styles that the song collection lacks."""

from __future__ import annotations

import random
from dataclasses import dataclass

import midi_file
import progressions
from midi_file import Event, Song
from progressions import Chord

DIVISION = 480
_KICK, _SNARE, _HAT, _RIDE = 36, 38, 42, 51


@dataclass(frozen=True)
class Style:
    """How a genre is played: its progressions, meters, texture, instruments and speed."""

    harmony: str  # the function of `progressions`
    beats: tuple[int, ...]
    textures: tuple[str, ...]
    chord_programs: tuple[int, ...]
    tune_programs: tuple[int, ...]
    bass_programs: tuple[int, ...]
    drums: str | None
    bpm: tuple[int, int]
    minor_share: float = 0.5
    modulates: float = 0.0


STYLES = {
    "chorale": Style("functional", (4, 3), ("block",), (19, 48, 52, 61, 16, 20), (19, 48, 52, 56, 73), (), None,
                     (60, 100), modulates=0.4),
    "classical": Style("functional", (4, 3), ("alberti", "arpeggio", "block"), (0, 6, 46, 48, 24), (0, 40, 71, 73, 48),
                       (42, 43, 0), None, (70, 140), modulates=0.5),
    "folk": Style("functional", (4, 3, 6), ("strum", "oompah", "drone"), (21, 24, 25, 105, 46), (21, 40, 73, 74, 22, 79),
                  (32, 43), None, (90, 180), 0.4),
    "country": Style("functional", (4, 3), ("oompah", "strum"), (25, 24, 27, 0), (25, 105, 22, 40, 53), (32, 33), "rock",
                     (80, 170), 0.1),
    "blues": Style("blues", (4,), ("strum", "shuffle"), (0, 16, 26, 29), (22, 27, 29, 65, 53), (32, 33), "swing",
                   (70, 160), 0.2),
    "jazz": Style("jazz", (4, 3), ("comp", "pad"), (0, 4, 26, 16), (65, 66, 56, 11, 0, 26), (32,), "swing", (80, 200),
                  0.35, 0.2),
    "electronic": Style("loop", (4,), ("pad", "pulse", "arpeggio"), (81, 88, 89, 90, 50, 62), (80, 81, 84, 54, 87),
                        (38, 39, 87), "four", (110, 176), 0.65),
    "rock": Style("loop", (4,), ("strum", "power", "pad"), (27, 28, 29, 30, 0, 18), (29, 30, 53, 65, 80), (33, 34),
                  "rock", (70, 180), 0.7),
    "reggae": Style("loop", (4,), ("offbeat",), (16, 27, 0), (53, 22, 16, 57), (33, 38), "rock", (66, 96), 0.45),
}
_MAJOR_SCALE, _MINOR_SCALE = (0, 2, 4, 5, 7, 9, 11), (0, 2, 3, 5, 7, 8, 10)
_BLUES_SCALE = (0, 3, 4, 5, 7, 9, 10)


class Piece:
    """Collects notes by part; beats are quarter notes."""

    def __init__(self, rng: random.Random) -> None:
        self._rng = rng
        self.parts: dict[int, list[Event]] = {}

    def note(self, channel: int, start: float, length: float, pitch: int, velocity: int) -> None:
        jitter = self._rng.uniform(0, 0.02)
        on, off = round((start + jitter) * DIVISION), round((start + max(0.1, length * 0.95)) * DIVISION)
        loud = min(127, max(20, velocity + self._rng.randint(-12, 12)))
        part = self.parts.setdefault(channel, [])
        part.append((on, midi_file.NOTE_ON << 4 | channel, bytes([pitch, loud])))
        part.append((off, midi_file.NOTE_OFF << 4 | channel, bytes([pitch, 0])))


def _voiced(chord: Chord, tonic: int, low: int) -> list[int]:
    """The chord's tones as pitches from `low` up."""
    return sorted(low + (tonic + chord.root + tone - low) % 12 for tone in chord.tones)


def _onsets(texture: str, beats: int) -> list[tuple[float, float]]:
    """(start, length) of the strokes of one bar."""
    eighths = [(i / 2, 0.5) for i in range(2 * beats)]
    return {"block": [(float(i), 1.0) for i in range(beats)], "pad": [(0.0, float(beats))], "strum": eighths,
            "power": eighths, "drone": [(0.0, float(beats))], "oompah": [(float(i), 0.6) for i in range(1, beats)],
            "shuffle": [(i + f, 0.3) for i in range(beats) for f in (0, 2 / 3)], "pulse": eighths,
            "comp": [(0.0, 1.2), (1.5, 0.5)], "offbeat": [(i + 0.5, 0.3) for i in range(beats)]}.get(texture, eighths)


def _play_chord(piece: Piece, texture: str, chord: Chord, tonic: int, at: float, beats: int) -> None:
    pitches = _voiced(chord, tonic, 52)
    if texture == "power":
        pitches = [40 + (tonic + chord.root - 40) % 12 + step for step in (0, 7, 12)]
    if texture == "drone":
        pitches = [48 + tonic % 12, 55 + tonic % 12]
    for index, (start, length) in enumerate(_onsets(texture, beats)):
        if texture in ("alberti", "arpeggio"):
            order = (0, 2, 1, 2) if texture == "alberti" else (0, 1, 2, len(pitches) - 1)
            piece.note(0, at + start, length * 1.5, pitches[order[index % 4]], 75)
        else:
            for pitch in pitches:
                piece.note(0, at + start, length, pitch, 72)


def _play_bass(piece: Piece, style: Style, chord: Chord, tonic: int, at: float, beats: int, rng: random.Random) -> None:
    root = 36 + (tonic + chord.root) % 12 - (12 if (tonic + chord.root) % 12 > 7 else 0)
    tones = [root + tone for tone in chord.tones[:3]]
    if style.harmony == "jazz":  # walking
        for beat in range(beats):
            piece.note(1, at + beat, 1, root if beat == 0 else rng.choice(tones), 88)
    elif style.harmony == "functional":
        piece.note(1, at, beats / 2, root if rng.random() < 0.75 else rng.choice(tones), 85)
        if rng.random() < 0.6:
            piece.note(1, at + beats // 2, beats / 2, rng.choice((root, tones[2])), 80)
    else:
        for beat in range(2 * beats):
            if rng.random() < 0.6 or beat == 0:
                piece.note(1, at + beat / 2, 0.5, root if rng.random() < 0.85 else rng.choice(tones), 90)


def _scale(style: Style, minor: bool, chord: Chord) -> list[int]:
    if style.harmony == "blues" and not minor:
        return list(_BLUES_SCALE)
    scale = set(_MINOR_SCALE if minor else _MAJOR_SCALE)
    tones = {(chord.root + tone) % 12 for tone in chord.tones}
    return sorted({s for s in scale if (s - 1) % 12 not in tones or s in tones} | tones)


def _play_tune(piece: Piece, style: Style, chord: Chord, tonic: int, minor: bool, at: float, beats: int, last: int,
               rng: random.Random) -> int:
    """Chord tones on strong beats, steps of the scale between; gives the last pitch."""
    scale, beat = _scale(style, minor, chord), 0.0
    while beat < beats:
        length = rng.choice((0.5, 0.5, 1.0, 1.0, 1.5, 2.0))
        allowed = {(tonic + chord.root + t) % 12 for t in chord.tones} if beat % 2 == 0 else {(tonic + s) % 12 for s in scale}
        near = [p for p in range(max(57, last - 5), min(84, last + 6)) if p % 12 in allowed]
        last = rng.choice(near) if near else 67
        if rng.random() < 0.85:
            piece.note(2, at + beat, min(length, beats - beat), last, 92)
        beat += length
    return last


def _play_drums(piece: Piece, kind: str, at: float, beats: int) -> None:
    for beat in range(beats):
        piece.note(9, at + beat, 0.2, _RIDE if kind == "swing" else _HAT, 70)
        piece.note(9, at + beat + (2 / 3 if kind == "swing" else 0.5), 0.2, _RIDE if kind == "swing" else _HAT, 55)
        if kind == "four" or beat == 0 or beat == 2 and beats == 4:
            piece.note(9, at + beat, 0.2, _KICK, 105)
        if beat % 2 == 1 or beats == 3 and beat:
            piece.note(9, at + beat, 0.2, _SNARE, 95)


def _sections(style: Style, minor: bool, bars: int, rng: random.Random) -> list[tuple[list[str], int, bool]]:
    """(symbols, tonic shift, minor) phrases: A A B A, B in a near key when the style modulates."""
    make = getattr(progressions, style.harmony)
    first, second = make(rng, minor, bars), make(rng, minor, bars)
    shift, other = 0, minor
    if rng.random() < style.modulates:
        shift, other = (3, False) if minor else rng.choice(((7, False), (5, False), (9, True)))
        second = make(rng, other, bars)
    home = (first, 0, minor)
    return [home, home, (second, shift, other), home]


def compose(genre: str, seed: int) -> tuple[Song, int, float | None]:
    """A piece, its key (0..23, majors first) and its tempo when it has drums."""
    rng = random.Random(seed)
    style, piece = STYLES[genre], Piece(rng)
    minor, tonic = rng.random() < style.minor_share, rng.randrange(12)
    beats, bpm, texture = rng.choice(style.beats), rng.uniform(*style.bpm), rng.choice(style.textures)
    drums = style.drums if style.drums and rng.random() < 0.9 else None
    bars, at, last, played = rng.choice((4, 8)), 0.0, 67 + rng.randint(-3, 5), 0
    with_tune, limit = rng.random() < 0.85, 62 * bpm / 60
    phrases = _sections(style, minor, bars, rng)
    while at < limit:
        symbols, shift, mode = phrases[played % 4]
        played += 1
        for symbol in symbols:
            chord = progressions.chord(symbol, mode)
            _play_chord(piece, texture, chord, tonic + shift, at, beats)
            if style.bass_programs:
                _play_bass(piece, style, chord, tonic + shift, at, beats, rng)
            if with_tune:
                last = _play_tune(piece, style, chord, tonic + shift, mode, at, beats, last, rng)
            if drums:
                _play_drums(piece, drums, at, beats)
            at += beats
    if rng.random() < 0.7:  # else the piece is faded out, without an ending
        _end(piece, tonic, minor, at, beats)
    return _song(piece, style, bpm, rng), tonic + 12 * minor, bpm if drums else None


def _end(piece: Piece, tonic: int, minor: bool, at: float, beats: int) -> None:
    for pitch in _voiced(progressions.chord("i" if minor else "I", minor), tonic, 52) + [36 + tonic % 12]:
        piece.note(0, at, beats, pitch, 80)


def _song(piece: Piece, style: Style, bpm: float, rng: random.Random) -> Song:
    tempo = bytes([midi_file.SET_TEMPO]) + round(60e6 / bpm).to_bytes(3, "big")
    song = Song(DIVISION, [[(0, midi_file.META, tempo)]])
    for channel, events in sorted(piece.parts.items()):
        programs = (style.chord_programs, style.bass_programs, style.tune_programs)
        head = [] if channel == 9 else [(0, midi_file.PROGRAM << 4 | channel, bytes([rng.choice(programs[channel])]))]
        song.tracks.append(head + sorted(events, key=lambda event: event[0]))
    return song
