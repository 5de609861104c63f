# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Prints how good the detection is: `evaluate.py CACHE_FOLDER [--validate]`.

By default cross-validated over the songs of `train`. With --validate the shipped weights answer for
the songs kept aside; look at it once, when everything is decided.
"""

from __future__ import annotations

import argparse
from pathlib import Path

import numpy as np

import fitting
import metrics
import recordings
import shipped  # noqa: F401
import train
import validation
from recordings import Item
from tonvale_keys import confidence, key_decision, tempo_decision, weights


def _confidences(items: list[Item], scores: np.ndarray, temperature: float) -> np.ndarray:
    return np.array([confidence.key_confidence(float(confidence.probabilities(row, temperature).max()), item.seconds)
                     for item, row in zip(items, scores)])


def _print_keys(items: list[Item], found: np.ndarray, sure: np.ndarray) -> None:
    true, genre = np.array([item.key for item in items]), np.array([item.label["genre"] for item in items])
    groups = {"all": true >= 0, **{name: genre == name for name in sorted(set(genre))},
              "major": true < 12, "minor": true >= 12}
    print("| songs | n | MIREX | accuracy | 95 % interval | Brier |\n|---|---|---|---|---|---|")
    for name, group in groups.items():
        row = metrics.key_row(found[group], true[group], sure[group])
        low, high = metrics.interval(row["accuracy"], int(group.sum()))
        print(f"| {name} | {int(group.sum())} | {row['mirex']:.3f} | {row['accuracy']:.3f} "
              f"| {low:.3f} .. {high:.3f} | {row['brier']:.4f} |")
    print("\n| confidence shown | n | mean shown | share right |\n|---|---|---|---|")
    for low, high, count, shown, right in metrics.reliability(sure, found == true):
        print(f"| {low:.2f} .. {high:.2f} | {count} | {shown:.3f} | {right:.3f} |")


def _print_tempi(items: list[Item], found: list[float | None]) -> None:
    hits = np.array([metrics.tempo_hits(bpm, item.label["bpm"]) for item, bpm in zip(items, found)
                     if item.label["bpm"]])
    first, second = hits.mean(axis=0)
    low, high = metrics.interval(first, len(hits))
    print(f"\ntempo: n {len(hits)}, Accuracy1 {first:.3f} (95 %: {low:.3f} .. {high:.3f}), Accuracy2 {second:.3f}\n")


def cross_validate(items: list[Item]) -> None:
    scores, tempi = validation.key_scores(items), validation.tempi(items)
    version = np.array([item.label["version"] for item in items])
    scored = ~np.isnan(scores[:, 0])
    plain = np.flatnonzero(scored & (version == 0))
    keys = np.array([item.key for item in items])
    temperature = fitting.fit_temperature(scores[plain], keys[plain])
    for title, chosen in (("plain recordings", plain), ("varied recordings", np.flatnonzero(scored & (version > 0)))):
        print(f"## Cross-validated, {title} (temperature {temperature:.3f} * {train.DOMAIN_CAUTION})\n")
        part = [items[index] for index in chosen]
        if not part:
            continue
        _print_keys(part, scores[chosen].argmax(1), _confidences(part, scores[chosen], temperature * train.DOMAIN_CAUTION))
        _print_tempi(part, [tempi[index] for index in chosen])


def validate(items: list[Item]) -> None:
    shipped_weights = weights.load()
    scores = np.stack([key_decision.logits(item.features, shipped_weights.major, shipped_weights.minor,
                                           shipped_weights.minor_bias) for item in items])
    print("## Songs kept aside\n")
    _print_keys(items, scores.argmax(1), _confidences(items, scores, shipped_weights.temperature))
    _print_tempi(items, [tempo_decision.decide(item.periodicity, shipped_weights.tempo, item.seconds)
                         for item in items])


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("cache", type=Path)
    parser.add_argument("--validate", action="store_true")
    options = parser.parse_args()
    split = "validate" if options.validate else "train"
    items = [item for item in recordings.load(options.cache) if item.label["split"] == split]
    if options.validate:
        validate(items)
    else:
        cross_validate(items)


if __name__ == "__main__":
    main()
