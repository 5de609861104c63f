#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Tonvale Authors
#
# SPDX-License-Identifier: GPL-3.0-or-later

"""What opening a song costs in each format, against counting its packets with ffprobe, and
whether the length that opening tells is the length of the music.

Usage: opening_time.py OPEN-SONG [--seconds N] [--rounds N]
"""

import argparse
import pathlib
import subprocess
import tempfile
from statistics import median

from processes import ratio, run_interleaved

FORMATS = {
    "MP3 CBR": ("cbr.mp3", ["-b:a", "192k"]),
    "MP3 VBR": ("vbr.mp3", ["-q:a", "3"]),
    "MP3 without header": ("bare.mp3", ["-b:a", "192k", "-write_xing", "0", "-id3v2_version", "0"]),
    "AAC in M4A": ("aac.m4a", ["-c:a", "aac", "-b:a", "160k"]),
    "ALAC in M4A": ("alac.m4a", ["-c:a", "alac"]),
    "AAC, ADTS": ("adts.aac", ["-c:a", "aac", "-b:a", "160k"]),
    "FLAC": ("song.flac", []),
    "Ogg Vorbis": ("song.ogg", ["-c:a", "libvorbis", "-q:a", "5"]),
    "Opus": ("song.opus", ["-c:a", "libopus", "-b:a", "128k"]),
    "WAV 16": ("song.wav", []),
    "WAV float": ("float.wav", ["-c:a", "pcm_f32le"]),
    "AIFF": ("song.aiff", []),
    "CAF": ("song.caf", ["-c:a", "pcm_s16le"]),
    "ALAC in CAF": ("alac.caf", ["-c:a", "alac"]),
    "WMA": ("song.wma", ["-c:a", "wmav2", "-b:a", "160k"]),
}
RATE = 48000


def encode(path: str, seconds: int, options: list[str]) -> None:
    """A chord with some noise; one frame more than whole seconds, so that no length is round."""
    frames = seconds * RATE + 1
    source = (f"aevalsrc='0.2*sin(440*2*PI*t)+0.05*random(0)|0.2*sin(660*2*PI*t)+0.05*random(1)'"
              f":s={RATE}:d={seconds + 1},atrim=end_sample={frames}")
    subprocess.run(["ffmpeg", "-nostdin", "-loglevel", "error", "-y", "-f", "lavfi", "-i", source,
                    *options, path], check=True)


def told_frames(open_song: str, path: str) -> int:
    words = subprocess.run([open_song, path], check=True, capture_output=True, text=True)
    return int(words.stdout.split()[2])


def decoded_frames(path: str) -> int:
    """How many frames another program gets when it decodes the file to its end."""
    decoder = subprocess.Popen(["ffmpeg", "-nostdin", "-loglevel", "error", "-i", path,
                                "-ac", "1", "-f", "s16le", "-"], stdout=subprocess.PIPE)
    size = 0
    while block := decoder.stdout.read(1 << 20):
        size += len(block)
    decoder.wait()
    return size // 2


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("open_song")
    parser.add_argument("--seconds", type=int, default=240)
    parser.add_argument("--rounds", type=int, default=5)
    arguments = parser.parse_args()
    print(f"{arguments.seconds} s and one frame, stereo, {RATE} Hz; {arguments.rounds} rounds\n")
    print("| format | frames off, as told | as ffmpeg decodes | opening CPU ms "
          "| ratio to ffprobe -count_packets |\n|---|---:|---:|---:|---:|")
    source_frames = arguments.seconds * RATE + 1
    with tempfile.TemporaryDirectory() as folder:
        for name, (file_name, options) in FORMATS.items():
            path = str(pathlib.Path(folder) / file_name)
            encode(path, arguments.seconds, options)
            runs = run_interleaved(
                {"ours": [arguments.open_song, path],
                 "ffprobe": ["ffprobe", "-v", "error", "-select_streams", "a:0", "-count_packets",
                             "-show_entries", "stream=nb_read_packets", path]}, arguments.rounds)
            print(f"| {name} | {told_frames(arguments.open_song, path) - source_frames:+d} "
                  f"| {decoded_frames(path) - source_frames:+d} "
                  f"| {1000 * median(run.cpu for run in runs['ours']):.0f} "
                  f"| {ratio(runs['ours'], runs['ffprobe'], 'cpu'):.2f} |", flush=True)


if __name__ == "__main__":
    main()
