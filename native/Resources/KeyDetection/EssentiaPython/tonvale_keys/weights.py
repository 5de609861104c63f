# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The trained numbers, from the file beside this module; tools/detection/train.py writes it."""

from __future__ import annotations

import os
from dataclasses import dataclass

import numpy as np

from .key_features import BLOCKS

FILE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "weights.f32")
_MODE_SIZE = BLOCKS * 12


@dataclass(frozen=True)
class Weights:
    """Key weights are BLOCKS x 12 per mode; `temperature` belongs to the confidence."""

    major: np.ndarray
    minor: np.ndarray
    minor_bias: float
    temperature: float
    tempo: np.ndarray


def load(path: str = FILE) -> Weights:
    """Plain little-endian floats in the order of Weights: other formats take longer to open than to use."""
    numbers = np.fromfile(path, "<f4").astype(np.float64)
    major, minor, rest = np.split(numbers, (_MODE_SIZE, 2 * _MODE_SIZE))
    return Weights(major.reshape(BLOCKS, 12), minor.reshape(BLOCKS, 12), float(rest[0]), float(rest[1]), rest[2:])


def save(weights: Weights, path: str) -> None:
    numbers = np.concatenate([weights.major.ravel(), weights.minor.ravel(), [weights.minor_bias, weights.temperature],
                              weights.tempo])
    numbers.astype("<f4").tofile(path)
