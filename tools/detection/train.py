# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Trains on the corpus' `train` songs and writes the weights: `train.py CACHE_FOLDER [--out FILE] [--temperature T]`."""

from __future__ import annotations

import argparse
from pathlib import Path

import numpy as np

import fitting
import recordings
import shipped  # noqa: F401
import validation
from recordings import Item
from tonvale_keys import key_features, weights

# Real recordings lie outside what was trained on: the fitted temperature is raised by this factor.
DOMAIN_CAUTION = 1.15


def cross_validated_temperature(items: list[Item]) -> float:
    scores = validation.key_scores(items)
    plain = np.array([item.label["version"] == 0 for item in items])
    return fitting.fit_temperature(scores[plain], np.array([item.key for item in items])[plain])


def trained(items: list[Item], temperature: float) -> weights.Weights:
    turned, scales = validation.scaled_rotations(items)
    keys = np.array([item.key for item in items])
    parameters = fitting.fit_key(turned, keys, validation.recording_weights(items), validation.KEY_L2)
    both = parameters[:-1].reshape(2, key_features.BLOCKS, 12) * scales[None, :, None]
    tempo = validation.fit_tempo(validation.tempo_examples(items), validation.tempo_weights(items),
                                 np.arange(len(items)))
    return weights.Weights(both[0], both[1], float(parameters[-1]), temperature * DOMAIN_CAUTION, tempo)


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("cache", type=Path)
    parser.add_argument("--out", default=weights.FILE)
    parser.add_argument("--temperature", type=float, help="as evaluate.py printed it; otherwise fitted anew")
    options = parser.parse_args()
    items = [item for item in recordings.load(options.cache) if item.label["split"] == "train"]
    temperature = options.temperature or cross_validated_temperature(items)
    weights.save(trained(items, temperature), options.out)
    print(f"{len(items)} recordings, temperature {temperature:.3f} (times {DOMAIN_CAUTION}), written to {options.out}")


if __name__ == "__main__":
    main()
