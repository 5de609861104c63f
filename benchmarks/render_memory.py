#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Tonvale Authors
#
# SPDX-License-Identifier: GPL-3.0-or-later

"""Peak memory of rendering a short and a two-hour stereo song: it must not grow with the length.

Usage: render_memory.py RENDERER [--seconds N ...]
"""

import argparse
import pathlib
import subprocess
import tempfile

from processes import run_once


def make_song(path: str, seconds: int) -> None:
    subprocess.run(
        ["ffmpeg", "-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i",
         f"aevalsrc='0.3*sin(440*2*PI*t)|0.3*sin(550*2*PI*t)':s=44100:d={seconds}", path],
        check=True)


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("renderer")
    parser.add_argument("--seconds", type=int, nargs="*", default=[60, 7200])
    arguments = parser.parse_args()
    print("| seconds | peak MiB | x real time |\n|---:|---:|---:|")
    with tempfile.TemporaryDirectory() as folder:
        for seconds in arguments.seconds:
            song = str(pathlib.Path(folder) / "song.wav")
            make_song(song, seconds)
            run = run_once([arguments.renderer, song, "--semitones", "3", "--quiet", "--force",
                            "-o", str(pathlib.Path(folder) / "output.wav")])
            print(f"| {seconds} | {run.memory:.0f} | {seconds / run.wall:.1f} |", flush=True)


if __name__ == "__main__":
    main()
