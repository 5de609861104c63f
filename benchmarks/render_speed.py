#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Tonvale Authors
#
# SPDX-License-Identifier: GPL-3.0-or-later

"""Renders a song three semitones up with tonvale-render and its peers, in turn.

Usage: render_speed.py RENDERER [--song FILE.wav] [--rounds N] [--seconds N]

Prints a table of medians; without --song a stereo song is made of the demo tune.
"""

import argparse
import pathlib
import subprocess
import sys
import tempfile
import wave
from statistics import median

from processes import ratio, run_interleaved

BASE = "rubberband -3"


def make_song(path: pathlib.Path, seconds: int) -> None:
    """The demo tune again and again."""
    maker = pathlib.Path(__file__).parent.parent / "scripts" / "make-demo-tune"
    tune_path = path.with_name("tune.wav")
    subprocess.run([sys.executable, str(maker), str(tune_path)], check=True)
    with wave.open(str(tune_path)) as tune, wave.open(str(path), "wb") as song:
        song.setparams(tune.getparams())
        frames = tune.readframes(tune.getnframes())
        wanted = seconds * tune.getframerate()
        while wanted > 0:
            count = min(wanted, tune.getnframes())
            song.writeframes(frames[:count * 4])
            wanted -= count


def commands(renderer: str, song: str, output: str) -> dict[str, list[str]]:
    return {
        "tonvale-render": [renderer, song, "--semitones", "3", "-o", output, "--force", "--quiet"],
        BASE: ["rubberband", "-3", "-q", "--ignore-clipping", "-p", "3", song, output],
        "rubberband -2": ["rubberband", "-2", "-q", "--ignore-clipping", "-p", "3", song, output],
        "soundstretch": ["soundstretch", song, output, "-pitch=3"],
        "sox": ["sox", "-D", song, output, "pitch", "300"],
    }


def duration(path: str) -> float:
    with wave.open(path) as song:
        return song.getnframes() / song.getframerate()


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("renderer")
    parser.add_argument("--song")
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--seconds", type=int, default=240)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        song = arguments.song or str(pathlib.Path(folder) / "song.wav")
        if not arguments.song:
            make_song(pathlib.Path(song), arguments.seconds)
        runs = run_interleaved(
            commands(arguments.renderer, song, str(pathlib.Path(folder) / "output.wav")),
            arguments.rounds)
        seconds = duration(song)
    print(f"{seconds:.0f} s of music, +3 semitones, {arguments.rounds} rounds\n")
    print(f"| program | CPU s | CPU ratio to {BASE} | wall ratio | x real time | peak MiB |")
    print("|---|---:|---:|---:|---:|---:|")
    for name, results in runs.items():
        print(f"| {name} | {median(run.cpu for run in results):.2f} "
              f"| {ratio(results, runs[BASE], 'cpu'):.3f} "
              f"| {ratio(results, runs[BASE], 'wall'):.3f} "
              f"| {seconds / median(run.wall for run in results):.1f} "
              f"| {max(run.memory for run in results):.0f} |")


if __name__ == "__main__":
    main()
