# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Answers through the Essentia package when the user has put it beside this one."""

from __future__ import annotations

import importlib
import math
from types import ModuleType

from . import decoding, messages
from .messages import DetectionError

_RATE = 44100  # what RhythmExtractor2013 expects
_PROFILE = "bgate"  # the most accurate of its key profiles on our songs


def find() -> ModuleType | None:
    """Essentia's standard module, or None when it is not there or does not work with this Python."""
    try:
        return importlib.import_module("essentia.standard")
    except ImportError:
        return None


def detect(standard: ModuleType, path: str) -> dict[str, str | float]:
    """Key, scale, keyConfidence and bpm as Essentia's own extractors see them."""
    decoding.check_readable(path)
    try:
        audio = standard.MonoLoader(filename=path, sampleRate=_RATE)()
    except RuntimeError:  # all that Essentia says of files it cannot decode
        raise DetectionError(messages.NOT_AUDIO) from None
    key, scale, strength = standard.KeyExtractor(profileType=_PROFILE, sampleRate=_RATE)(audio)
    bpm = float(standard.RhythmExtractor2013(method="multifeature")(audio)[0])
    sure = float(strength) if math.isfinite(strength) else 0.0
    result: dict[str, str | float] = {"key": str(key), "scale": str(scale),
                                      "keyConfidence": min(1.0, max(0.0, sure))}
    if math.isfinite(bpm) and bpm > 0:
        result["bpm"] = round(bpm, 2)
    return result
