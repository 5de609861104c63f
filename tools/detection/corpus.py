# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the corpus of recordings: `corpus.py KEYS_FOLDER CACHE_FOLDER [--versions N] [--composed N] [--part I/N]`.

KEYS_FOLDER holds labels.jsonl and midi/. For each song version 0 is the piece as labelled, plainly
recorded; versions 1.. are varied and spoilt (training only). Pieces composed by compose.py can be
added for training. CACHE_FOLDER gets, for each recording, the decoded samples (.npy) and its label (.json).
"""

from __future__ import annotations

import argparse
import json
import random
import zlib
from pathlib import Path

import numpy as np

import compose
import midi_file
import rendering
import variation
from rendering import Recording

PITCH_CLASSES = {name: pc for pc, names in enumerate(
    ("C", "C# Db", "D", "D# Eb", "E", "F", "F# Gb", "G", "G# Ab", "A", "A# Bb", "B")) for name in names.split()}
PLAIN_ENCODERS = ("mp3", "m4a", "ogg", "flac", "wav")
NOISE_LEVELS = (None, None, -40.0, -30.0, -24.0)


def key_index(label: dict) -> int:
    """0..11 major, 12..23 minor."""
    return PITCH_CLASSES[label["key"]] + 12 * (label["scale"] == "minor")


def _moved_key(key: int, semitones: int) -> int:
    return key // 12 * 12 + (key + semitones) % 12


def _spoilt_recording(rng: random.Random) -> Recording:
    return Recording(
        rate=22050, cents=rng.choice((0.0, rng.gauss(0, 20), rng.uniform(-45, 45))),
        encoder=rng.choice(tuple(rendering.ENCODERS)), tilt=rng.choice((0.0, rng.uniform(-0.8, 0.8))),
        drive=rng.choice((0.0, 0.0, rng.random())), noise_db=rng.choice(NOISE_LEVELS),
        echo=rng.choice((0.0, 0.0, rng.uniform(0.1, 0.6))), reverb=rng.random() < 0.5, seed=rng.randrange(1 << 30))


def _make(label: dict, version: int, source: Path) -> tuple[np.ndarray, dict]:
    rng = random.Random(zlib.crc32(f"{label['file']} {version}".encode()))
    song, key = midi_file.read(source), key_index(label)
    # The labelled tempo is that of the detuned rendering; the MIDI file's own is needed here.
    bpm = label["bpm"] and label["bpm"] / 2 ** (label["detune_cents"] / 1200)
    if version == 0:
        encoder = PLAIN_ENCODERS[zlib.crc32(label["file"].encode()) % len(PLAIN_ENCODERS)]
        how = Recording(cents=label["detune_cents"], encoder=encoder)
        return rendering.record(song, how), _entry(label, version, key, bpm, how)
    song, change = variation.vary(song, rng)
    how, sung = _spoilt_recording(rng), None
    if rng.random() < 0.4:
        backing, tune = variation.without_tune(song)
        if tune is not None:
            song, sung = backing, midi_file.notes_of(song.tracks[tune])
    bpm = bpm and bpm * change.tempo
    return rendering.record(song, how, sung), _entry(label, version, _moved_key(key, change.semitones), bpm, how)


def _entry(label: dict, version: int, key: int, bpm: float | None, how: Recording) -> dict:
    return {"file": label["file"], "genre": label["genre"], "song": label["song"], "split": label["split"],
            "version": version, "key": key, "bpm": bpm and bpm * 2 ** (how.cents / 1200), "encoder": how.encoder}


def _make_composed(number: int) -> tuple[np.ndarray, dict]:
    genre = tuple(compose.STYLES)[number % len(compose.STYLES)]
    song, key, bpm = compose.compose(genre, number)
    how = _spoilt_recording(random.Random(number))
    label = {"file": f"composed_{number:04d}.mid", "genre": f"composed {genre}", "song": None, "split": "train"}
    return rendering.record(song, how), _entry(label, 1, key, bpm, how)


def _store(stem: Path, recording: tuple[np.ndarray, dict]) -> None:
    np.save(stem.with_suffix(".npy"), (np.clip(recording[0], -1, 1) * 32767).astype(np.int16))
    stem.with_suffix(".json").write_text(json.dumps(recording[1]))


def make_composed(cache: Path, numbers: range) -> None:
    for number in numbers:
        stem = cache / f"composed_{number:04d}"
        if not stem.with_suffix(".json").exists():
            _store(stem, _make_composed(number))


def make_all(keys: Path, cache: Path, versions: list[int], part: int, parts: int) -> None:
    cache.mkdir(parents=True, exist_ok=True)
    labels = [json.loads(line) for line in (keys / "labels.jsonl").read_text().splitlines()]
    wanted = [(version, label) for version in versions for label in labels
              if version == 0 or label["split"] == "train"]
    for version, label in wanted[part::parts]:
        stem = cache / f"{label['file'].removesuffix('.mid')}-v{version}"
        if not stem.with_suffix(".json").exists():
            _store(stem, _make(label, version, keys / "midi" / label["file"]))


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("keys", type=Path)
    parser.add_argument("cache", type=Path)
    parser.add_argument("--versions", type=int, default=4, help="versions per training song, the plain one included")
    parser.add_argument("--composed", type=int, default=360, help="composed training pieces")
    parser.add_argument("--part", default="0/1", help="I/N: makes the I-th of N parts, to use several processors")
    options = parser.parse_args()
    part, parts = map(int, options.part.split("/"))
    make_all(options.keys, options.cache, list(range(options.versions)), part, parts)
    make_composed(options.cache, range(part, options.composed, parts))


if __name__ == "__main__":
    main()
