# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""How sure the key is, as a probability: of the songs shown as 80 %, 80 % should be right."""

from __future__ import annotations

import numpy as np

# Real recordings differ from the training recordings, so the answer is never shown as certain.
CEILING = 0.98
_FULL_SECONDS = 20  # shorter recordings have not shown their key yet
_SHORTNESS_EXPONENT = 0.25


def probabilities(scores: np.ndarray, temperature: float) -> np.ndarray:
    """Softmax at a temperature fitted by cross-validation."""
    powers = np.exp((scores - scores.max()) / temperature)
    return powers / powers.sum()


def key_confidence(best: float, seconds: float) -> float:
    """Of the best key's probability and the recording's length."""
    shortness = min(1.0, seconds / _FULL_SECONDS) ** _SHORTNESS_EXPONENT
    return float(min(CEILING, best) * shortness)
