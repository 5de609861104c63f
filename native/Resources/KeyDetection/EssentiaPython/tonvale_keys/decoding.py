# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Decodes any audio file to mono floats through the ffmpeg program, block by block."""

from __future__ import annotations

import os
import subprocess
import threading
from collections.abc import Iterator

import numpy as np

from . import messages
from .messages import DetectionError

SAMPLE_RATE = 11025  # every pitch the analysis uses is below 5.5 kHz
BLOCK_BYTES = 1 << 17
# A file that breaks off is analysed when this much could be read; less says nothing about it.
DAMAGED_MINIMUM_SECONDS = 3
STDERR_KEPT_BYTES = 8192
# The formats that the application reads; playlists, which name other files to open, are none of them.
CONTAINERS = (
    "aac,ac3,aiff,amr,ape,asf,au,avi,caf,dsf,dts,dtshd,eac3,flac,flv,iff,ircam,loas,"
    "matroska,webm,mlp,mov,mp4,m4a,3gp,3g2,mj2,mp3,mpc,mpc8,mpeg,mpegts,nistsphere,ogg,oma,"
    "rm,shn,sox,tak,truehd,tta,voc,w64,wav,wv,xwma")


def check_readable(path: str) -> None:
    """Raises the DetectionError for a path that cannot be opened at all."""
    if not os.path.exists(path):
        raise DetectionError(messages.MISSING_FILE)
    if not os.path.isfile(path):
        raise DetectionError(messages.NOT_AUDIO)
    if not os.access(path, os.R_OK):
        raise DetectionError(messages.UNREADABLE_FILE)


def command(path: str) -> list[str]:
    """The decoder's command line.

    "file:" keeps names like "-x.mp3" or "http:y" from being read as anything but a file; the
    whitelists keep a playlist in disguise from opening other files and network addresses.
    """
    return ["ffmpeg", "-v", "error", "-nostdin", "-threads", "1", "-protocol_whitelist", "file",
            "-format_whitelist", CONTAINERS, "-i", f"file:{path}", "-map", "0:a:0", "-ac", "1",
            "-ar", str(SAMPLE_RATE), "-f", "f32le", "-"]


class _ErrorTail:
    """Reads a stream to its end in a thread, so that a talkative decoder never blocks; keeps the end."""

    def __init__(self, stream) -> None:
        self._stream = stream
        self._tail = b""
        self._thread = threading.Thread(target=self._drain, daemon=True)
        self._thread.start()

    def _drain(self) -> None:
        while part := self._stream.read1(4096):
            self._tail = (self._tail + part)[-STDERR_KEPT_BYTES:]

    def text(self) -> str:
        self._thread.join()
        return self._tail.decode("utf-8", "replace")


def _start(path: str) -> subprocess.Popen:
    try:
        return subprocess.Popen(command(path), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE)
    except (FileNotFoundError, PermissionError):
        raise DetectionError(messages.FFMPEG_MISSING) from None


def _check_outcome(status: int, errors: str, read_bytes: int) -> None:
    if status == 0 or read_bytes >= DAMAGED_MINIMUM_SECONDS * SAMPLE_RATE * 4:
        return
    no_sound = "matches no streams" in errors or "does not contain any stream" in errors
    raise DetectionError(messages.NO_SOUND_TRACK if no_sound else messages.NOT_AUDIO)


def _samples(data: bytes) -> np.ndarray:
    """Whole samples; broken files decode to NaN or infinity here and there, which become silence."""
    samples = np.frombuffer(data, np.float32, len(data) // 4)
    return samples if np.isfinite(samples).all() else np.nan_to_num(samples, posinf=0, neginf=0)


def blocks(path: str) -> Iterator[np.ndarray]:
    """The song's samples in blocks of at most BLOCK_BYTES; raises DetectionError."""
    check_readable(path)
    process = _start(path)
    errors = _ErrorTail(process.stderr)
    read_bytes = 0
    try:
        while data := process.stdout.read(BLOCK_BYTES):
            read_bytes += len(data)
            yield _samples(data)
        _check_outcome(process.wait(), errors.text(), read_bytes)
    finally:
        process.stdout.close()  # a decoder that is no longer read ends by itself
        process.kill()
        process.wait()
