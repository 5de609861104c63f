# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Detection helpers for the tests: scripts that answer, fail, or wait."""

from __future__ import annotations

from pathlib import Path

ANSWER = """print('{"key": "A", "scale": "minor", "keyConfidence": 0.82, "bpm": 121.7}')"""
FAILURE = """import sys
sys.stderr.write("Traceback (most recent call last)")
print('{"error": "The song is too short."}')
sys.exit(2)"""
UNKNOWN_KEY = """print('{"key": "H", "scale": "minor", "keyConfidence": 0.5}')"""
HANG = """import signal
signal.pause()"""


def answer_after(gate: Path) -> str:
    """A helper that waits until somebody has opened this named pipe for writing."""
    return f"open({str(gate)!r}).close()\n{ANSWER}"
