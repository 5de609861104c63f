# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Features of the corpus' recordings, extracted by the shipped package and cached beside them.

`recordings.py CACHE_FOLDER [--part I/N]` extracts; the other scripts call load().
"""

from __future__ import annotations

import argparse
import json
from collections.abc import Iterator
from dataclasses import dataclass
from pathlib import Path

import numpy as np

import shipped  # noqa: F401
from tonvale_keys import analysis, chroma, key_features, periodicity

_BLOCK = 1 << 16


@dataclass(frozen=True)
class Item:
    """One recording: its label, its key features and its periodicity."""

    label: dict
    features: np.ndarray
    periodicity: np.ndarray
    seconds: float

    @property
    def key(self) -> int:
        return self.label["key"]


def _blocks(samples: np.ndarray) -> Iterator[np.ndarray]:
    for start in range(0, len(samples), _BLOCK):
        yield samples[start : start + _BLOCK].astype(np.float32) / 32767


def tracks_of(stem: Path) -> analysis.Tracks:
    """What the helper keeps of the recording; cached, for this is the slow half."""
    stored = stem.with_suffix(".tracks.npz")
    if not stored.exists():
        tracks = analysis.collect(_blocks(np.load(stem.with_suffix(".npy"))))
        np.savez(stored, roots=tracks.roots, curves=tracks.curves, seconds=tracks.seconds)
    with np.load(stored) as found:
        return analysis.Tracks(found["roots"], found["curves"], float(found["seconds"]))


def load_one(stem: Path) -> Item:
    stored = stem.with_suffix(".features.npz")
    label = json.loads(stem.with_suffix(".json").read_text())
    if not stored.exists():
        tracks = tracks_of(stem)
        features = key_features.extract(chroma.fold(tracks.roots))
        np.savez(stored, features=features, periodicity=periodicity.of(tracks.curves), seconds=tracks.seconds)
    with np.load(stored) as found:
        return Item(label, found["features"], found["periodicity"], float(found["seconds"]))


def load(cache: Path) -> list[Item]:
    return [load_one(path.with_suffix("")) for path in sorted(cache.glob("*.json"))]


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("cache", type=Path)
    parser.add_argument("--part", default="0/1", help="I/N: extracts the I-th of N parts")
    options = parser.parse_args()
    part, parts = map(int, options.part.split("/"))
    for path in sorted(options.cache.glob("*.json"))[part::parts]:
        load_one(path.with_suffix(""))


if __name__ == "__main__":
    main()
