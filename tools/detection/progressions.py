# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Chord progressions of styles the song collection lacks, from common harmonic practice.

A chord is written as in harmony books: a roman numeral (lower case = minor) with a suffix.
"""

from __future__ import annotations

import random
from dataclasses import dataclass

_DEGREES = {"i": 0, "ii": 2, "iii": 4, "iv": 5, "v": 7, "vi": 9, "vii": 11}
_SUFFIXES = {"": (), "7": (10,), "maj7": (11,), "6": (9,), "9": (10, 14), "o": (), "o7": (9,), "h7": (10,)}


@dataclass(frozen=True)
class Chord:
    """Root in semitones above the tonic, and the tones above the root."""

    root: int
    tones: tuple[int, ...]


def chord(symbol: str, minor_key: bool) -> Chord:
    """"bVII", "V7", "iio", "V/V" ...; in minor keys III, VI and VII are the natural ones."""
    symbol, _, target = symbol.partition("/")
    flat, body = symbol.startswith("b"), symbol.removeprefix("b")
    numeral = body.rstrip("majoh679")
    suffix = body[len(numeral):]
    root = _DEGREES[numeral.lower()] - flat
    if minor_key and not target and numeral in ("III", "VI", "VII"):
        root -= 1
    third = 4 if numeral.isupper() else 3
    fifth = 6 if suffix[:1] in ("o", "h") else 7
    if target:
        root += chord(target, minor_key).root
    return Chord(root % 12, (0, third, fifth, *_SUFFIXES[suffix]))


# What may follow each chord of functional harmony, with weights.
_MAJOR_STEPS = {
    "I": "IV IV IV V V V7 vi vi ii ii iii V/V V7/ii", "ii": "V V V7 V7 viio", "iii": "vi vi IV", "IV": "V V7 I I ii",
    "V": "I I I vi V7", "V7": "I I I vi", "vi": "ii ii IV IV V V/V iii", "V/V": "V V7", "V7/ii": "ii", "viio": "I"}
_MINOR_STEPS = {
    "i": "iv iv V V7 VI III VII iio iv V", "iio": "V V7 V7", "III": "VI iv VII", "iv": "V V7 i i VII iio",
    "V": "i i i VI V7", "V7": "i i i VI", "VI": "iv iio III V VII", "VII": "III III i VI", "viio": "i i"}

LOOPS = {
    False: ("I V vi IV", "I vi IV V", "I IV V IV", "I bVII IV I", "I IV vi V", "I iii IV V", "I ii IV V", "I IV I V",
            "I bVII bVI bVII", "I bIII IV I", "I V IV IV", "I vi ii V7", "I IV", "I bVII", "I V ii IV", "Imaj7 IVmaj7"),
    True: ("i VII VI VII", "i VI III VII", "i VI VII i", "i v VI iv", "i VII VI V", "i iv v i", "i III VII iv",
           "i IV i IV", "i VII IV i", "i iv V i", "i VI iv V", "i VII i VII", "i iv", "i v", "i VI", "i i VII VII",
           "i iv i V7", "i7 iv7", "i VI III iv", "i III VI VII")}
_BLUES = ("I7 I7 I7 I7 IV7 IV7 I7 I7 V7 IV7 I7 V7", "I7 IV7 I7 I7 IV7 IV7 I7 I7 V7 IV7 I7 I7",
          "I7 I7 I7 I7 IV7 IV7 I7 I7 V7 V7 I7 I7")
_MINOR_BLUES = ("i7 i7 i7 i7 iv7 iv7 i7 i7 VI7 V7 i7 V7", "i7 iv7 i7 i7 iv7 iv7 i7 i7 V7 iv7 i7 i7")
_JAZZ = {
    False: ("ii7 V7 Imaj7 Imaj7", "Imaj7 vi7 ii7 V7", "iii7 V7/ii ii7 V7", "Imaj7 V7/IV IVmaj7 iv7", "ii7 V7 Imaj7 V7/ii",
            "Imaj7 V7/V ii7 V7", "I6 I6 ii7 V9"),
    True: ("iih7 V7 i i", "i VI7 iih7 V7", "i iv7 iih7 V7", "iv7 VII7 IIImaj7 VImaj7", "i i7 iv7 V7", "iih7 V7 i i6")}


def functional(rng: random.Random, minor: bool, bars: int) -> list[str]:
    """A phrase that leaves the tonic and cadences on it."""
    steps, now = (_MINOR_STEPS if minor else _MAJOR_STEPS), "i" if minor else "I"
    phrase = [now]
    while len(phrase) < bars - 2:
        now = rng.choice(steps[now].split())
        phrase.append(now)
    dominant = rng.choice(("V", "V7", "V7", "iv" if minor else "IV"))
    return [*phrase, dominant, "i" if minor else "I"]


def loop(rng: random.Random, minor: bool, bars: int) -> list[str]:
    pattern = rng.choice(LOOPS[minor]).split()
    return (pattern * bars)[:bars]


def blues(rng: random.Random, minor: bool, _bars: int) -> list[str]:
    return rng.choice(_MINOR_BLUES if minor else _BLUES).split()


def jazz(rng: random.Random, minor: bool, bars: int) -> list[str]:
    phrase: list[str] = []
    while len(phrase) < bars - 4:
        phrase += rng.choice(_JAZZ[minor]).split()
    return phrase + (["iih7", "V7", "i", "i"] if minor else ["ii7", "V7", "Imaj7", "I6"])
