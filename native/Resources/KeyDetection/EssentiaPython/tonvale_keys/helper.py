# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The helper's manners: one JSON object on standard output, whatever happens."""

from __future__ import annotations

import json
import os
import sys

from . import messages
from .messages import DetectionError


def _take_standard_output() -> int:
    """The real standard output; number 1, where libraries and children print, leads nowhere from now on.

    It is never given back: what a library printed waits in buffers until the interpreter ends.
    """
    real, null = os.dup(1), os.open(os.devnull, os.O_WRONLY)
    os.dup2(null, 1)
    os.close(null)
    return real


def _detect(path: str) -> dict[str, str | float]:
    from . import essentia_adapter

    if (standard := essentia_adapter.find()) is not None:
        return essentia_adapter.detect(standard, path)
    from . import analysis

    return analysis.detect(path)


def _answer(arguments: list[str]) -> tuple[dict[str, str | float], int]:
    if len(arguments) != 1:
        return {"error": messages.NO_FILE_GIVEN}, 1
    try:
        return _detect(arguments[0]), 0
    except DetectionError as error:
        return {"error": str(error)}, 1
    except ModuleNotFoundError as error:
        missing = (error.name or "").partition(".")[0] == "numpy"
        return {"error": messages.NUMPY_MISSING if missing else messages.UNEXPECTED}, 1
    except Exception:  # the user gets a sentence, never a traceback
        return {"error": messages.UNEXPECTED}, 1


def main() -> int:
    """Prints the answer or the error; the exit status says which."""
    output = _take_standard_output()
    result, status = _answer(sys.argv[1:])
    os.write(output, json.dumps(result).encode("ascii") + b"\n")
    return status
