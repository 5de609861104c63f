# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The analysis of a song from its blocks of samples to the answer."""

from __future__ import annotations

from collections.abc import Iterable
from dataclasses import dataclass

import numpy as np

from . import chroma, confidence, decoding, key_decision, key_features, messages, periodicity, tempo_decision
from .messages import DetectionError
from .note_track import NoteTrack
from .onsets import OnsetTrack
from .weights import Weights, load

MINIMUM_SECONDS = 0.5
SILENCE_PEAK = 1e-4  # -80 dB below full scale


@dataclass(frozen=True)
class Tracks:
    """What is kept of a song: see NoteTrack and OnsetTrack."""

    roots: np.ndarray
    curves: np.ndarray
    seconds: float


def collect(blocks: Iterable[np.ndarray]) -> Tracks:
    """Reads the song once, block by block; raises DetectionError when there is nothing to analyse."""
    note_track, onset_track = NoteTrack(), OnsetTrack()
    count, peak = 0, 0.0
    for block in blocks:
        if len(block) == 0:
            continue
        count += len(block)
        peak = max(peak, float(block.max()), -float(block.min()))
        note_track.add(block)
        onset_track.add(block)
    seconds = count / decoding.SAMPLE_RATE
    if seconds < MINIMUM_SECONDS:
        raise DetectionError(messages.TOO_SHORT)
    if peak < SILENCE_PEAK:
        raise DetectionError(messages.SILENT)
    return Tracks(note_track.finish(), onset_track.finish(), seconds)


def answer(tracks: Tracks, weights: Weights) -> dict[str, str | float]:
    """The members of the helper's answer."""
    folded = chroma.fold(tracks.roots)
    if not folded.weight.any():
        raise DetectionError(messages.NO_TONES)
    scores = key_decision.logits(key_features.extract(folded), weights.major, weights.minor, weights.minor_bias)
    best = int(scores.argmax())
    probability = confidence.probabilities(scores, weights.temperature)[best]
    key, scale = key_decision.name(best)
    result: dict[str, str | float] = {
        "key": key, "scale": scale,
        "keyConfidence": round(confidence.key_confidence(probability, tracks.seconds), 4)}
    bpm = tempo_decision.decide(periodicity.of(tracks.curves), weights.tempo, tracks.seconds)
    if bpm is not None:
        result["bpm"] = round(bpm, 2)
    return result


def detect(path: str) -> dict[str, str | float]:
    """Key, scale, keyConfidence and, when known, bpm of the audio file."""
    return answer(collect(decoding.blocks(path)), load())
