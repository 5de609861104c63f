#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Prints the key, scale, confidence and tempo of the song given as argument, as one JSON object."""

import gc
import os
import sys

sys.dont_write_bytecode = True  # the application's directory may be read-only, and is not ours to fill
# One thread is fastest at these sizes and costs no memory for others; read when numpy is imported.
os.environ["OPENBLAS_NUM_THREADS"] = "1"
gc.disable()  # a short life with little garbage: looking for it would cost a tenth of the start


def main() -> int:
    try:
        from tonvale_keys import helper
    except ImportError:
        print('{"error": "The key detection is not completely installed."}')
        return 1
    return helper.main()


if __name__ == "__main__":
    status = main()
    sys.stdout.flush()
    os._exit(status)  # nothing is left to tidy up, and taking numpy apart takes as long as a second of song
