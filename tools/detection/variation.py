# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Varies an arrangement: other instruments, drum level, dynamics, vibrato, transposition and tempo.

The classifier must learn harmony, not the arranger's habits, so each variation changes what a
listener would not hear as a change of mode.
"""

from __future__ import annotations

import random
from dataclasses import dataclass

import midi_file
from midi_file import Event, Song

# General MIDI programs (from 0) that can take the part of accompaniment, bass and tune.
CHORD_PROGRAMS = (0, 1, 2, 4, 5, 6, 7, 16, 17, 18, 19, 21, 24, 25, 26, 27, 28, 29, 30, 46, 48, 49, 50, 51,
                  61, 62, 81, 88, 89, 90, 91, 94, 95)
BASS_PROGRAMS = (32, 33, 34, 35, 36, 37, 38, 39, 43, 58, 87)
TUNE_PROGRAMS = (0, 4, 11, 21, 22, 24, 26, 27, 29, 30, 40, 41, 42, 48, 52, 53, 54, 56, 57, 59, 60, 64, 65, 66, 68,
                 71, 73, 75, 78, 79, 80, 81, 82, 85, 105, 110)
VOLUME, MODULATION = 7, 1
BASS_CEILING = 52  # a part whose median pitch is below E3 is played by a bass


@dataclass(frozen=True)
class Variation:
    """What was changed: `semitones` moves the key, `tempo` multiplies beats per minute."""

    semitones: int = 0
    tempo: float = 1.0


def _role_programs(track: list[Event]) -> tuple[int, ...]:
    notes = midi_file.notes_of(track)
    pitches = sorted(note.pitch for note in notes)
    if pitches[len(pitches) // 2] < BASS_CEILING:
        return BASS_PROGRAMS
    together = sum(a.start == b.start for a, b in zip(notes, notes[1:]))
    return CHORD_PROGRAMS if together > len(notes) / 4 else TUNE_PROGRAMS


def _vary_event(event: Event, semitones: int, program: int | None, gain: float, touch: float) -> Event:
    tick, status, data = event
    kind, drums = status >> 4, status & 15 == midi_file.DRUM_CHANNEL
    if kind in (midi_file.NOTE_ON, midi_file.NOTE_OFF):
        pitch = data[0] if drums else min(127, max(0, data[0] + semitones))
        velocity = min(127, max(1, round(data[1] * touch))) if data[1] else 0
        return tick, status, bytes([pitch, velocity])
    if kind == midi_file.CONTROL and data[0] == VOLUME:
        return tick, status, bytes([VOLUME, min(127, max(0, round(data[1] * gain)))])
    if kind == midi_file.PROGRAM and program is not None:
        return tick, status, bytes([program])
    return event


def _vary_track(track: list[Event], semitones: int, rng: random.Random) -> list[Event]:
    channel = midi_file.channel_of(track)
    if channel is None:
        return track
    drums = channel == midi_file.DRUM_CHANNEL
    gain = rng.choice((0.0, 0.3, 0.6, 1.0, 1.3)) if drums else rng.uniform(0.6, 1.25)
    program = rng.choice(_role_programs(track)) if not drums and rng.random() < 0.8 else None
    touch = rng.uniform(0.75, 1.2)
    varied = [_vary_event(event, semitones, program, gain, touch) for event in track]
    if not drums and rng.random() < 0.3:
        varied.insert(0, (0, midi_file.CONTROL << 4 | channel, bytes([MODULATION, rng.randint(20, 110)])))
    return varied


def _scale_tempo(track: list[Event], factor: float) -> list[Event]:
    def scaled(event: Event) -> Event:
        tick, status, data = event
        if status != midi_file.META or data[0] != midi_file.SET_TEMPO:
            return event
        return tick, status, data[:1] + round(int.from_bytes(data[1:4], "big") / factor).to_bytes(3, "big")

    return [scaled(event) for event in track]


def vary(song: Song, rng: random.Random) -> tuple[Song, Variation]:
    """A varied copy of `song` and what changed in it."""
    change = Variation(rng.randint(-5, 6), rng.uniform(0.86, 1.18))
    tracks = [_scale_tempo(_vary_track(track, change.semitones, rng), change.tempo) for track in song.tracks]
    return Song(song.division, tracks), change


def without_tune(song: Song) -> tuple[Song, int | None]:
    """`song` without its tune track (the highest single line), and that track's index."""
    tunes = [index for index, track in enumerate(song.tracks)
             if midi_file.channel_of(track) not in (None, midi_file.DRUM_CHANNEL)
             and _role_programs(track) is TUNE_PROGRAMS]
    if not tunes:
        return song, None
    tune = tunes[-1]
    return Song(song.division, [t for index, t in enumerate(song.tracks) if index != tune]), tune
