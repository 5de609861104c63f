# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Turns MIDI into recordings: fluidsynth, a chain of recording faults, an encoder, the helper's decoder."""

from __future__ import annotations

import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path

import numpy as np

import midi_file
import shipped  # noqa: F401
import voice
from midi_file import Note, Song
from tonvale_keys import decoding

SOUND_FONT = Path("/usr/share/sounds/sf2/FluidR3_GM.sf2")
ENCODERS: dict[str, list[str]] = {
    "wav": [],
    "flac": [],
    "mp3": ["-b:a", "128k"],
    "mp3-low.mp3": ["-b:a", "64k"],
    "m4a": ["-c:a", "aac", "-b:a", "128k"],
    "m4a-low.m4a": ["-c:a", "aac", "-b:a", "64k"],
    "ogg": ["-c:a", "libvorbis", "-q:a", "3"],
}


@dataclass(frozen=True)
class Recording:
    """How one recording is made from a song."""

    rate: int = 44100
    cents: float = 0.0
    encoder: str = "mp3"
    tilt: float = 0.0  # first-order emphasis, -0.8 (dull) .. 0.8 (thin)
    drive: float = 0.0  # soft clipping; 0 = clean
    noise_db: float | None = None
    echo: float = 0.0
    reverb: bool = True  # the synthesizer's own
    seed: int = 0


def synthesize(song: Song, how: Recording, folder: Path) -> np.ndarray:
    """Stereo float samples, one row per sample."""
    effects = [] if how.reverb else ["-o", "synth.reverb.active=0", "-o", "synth.chorus.active=0"]
    midi_file.write(song, folder / "song.mid")
    command = ["fluidsynth", "-ni", "-q", "-F", str(folder / "song.raw"), "-T", "raw", "-O", "s16",
               "-r", str(how.rate), "-g", "0.5", "-z", "1024", "-o", "synth.dynamic-sample-loading=1",
               *effects, str(SOUND_FONT), str(folder / "song.mid")]
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return np.fromfile(folder / "song.raw", "<i2").reshape(-1, 2).astype(np.float32) / 32768


def add_voice(audio: np.ndarray, notes: list[Note], tick_seconds: float, how: Recording) -> np.ndarray:
    rng = np.random.default_rng(how.seed)
    line = voice.sing(notes, tick_seconds, len(audio), how.rate, rng)
    level = float(np.sqrt(np.mean(audio**2))) * rng.uniform(1.5, 4.0)
    return audio + (line * level)[:, None]


def _emphasize(audio: np.ndarray, tilt: float) -> np.ndarray:
    if tilt >= 0:
        return audio - tilt * np.vstack([np.zeros((1, 2), np.float32), audio[:-1]])
    taps = (-tilt) ** np.arange(12)  # a truncated one-pole low-pass
    return np.stack([np.convolve(side, taps / taps.sum(), "same") for side in audio.T], 1).astype(np.float32)


def _pink_noise(frames: int, rng: np.random.Generator) -> np.ndarray:
    """Noise falling 3 dB per octave, like hiss, rooms and crowds."""
    spectrum = np.fft.rfft(rng.normal(size=1 << (frames - 1).bit_length()))
    spectrum /= np.sqrt(np.arange(len(spectrum)) + 1)
    noise = np.fft.irfft(spectrum)[:frames]
    return (noise / noise.std()).astype(np.float32)


def spoil(audio: np.ndarray, how: Recording) -> np.ndarray:
    """The recording's faults: tone, room, noise, limiting; the result peaks below 1."""
    rng = np.random.default_rng(how.seed + 1)
    if how.tilt:
        audio = _emphasize(audio, how.tilt)
    if how.echo:
        for delay in rng.integers(how.rate // 60, how.rate // 4, 5):
            audio[delay:] += how.echo * rng.uniform(0.2, 0.7) * audio[:-delay, ::-1]
    if how.noise_db is not None:
        level = float(np.sqrt(np.mean(audio**2))) * 10 ** (how.noise_db / 20)
        audio = audio + (_pink_noise(len(audio), rng) * level)[:, None]
    audio = audio / max(1e-6, float(np.abs(audio).max()))
    return np.tanh(audio * (1 + 5 * how.drive)) if how.drive else audio * rng.uniform(0.3, 0.97)


def encode(audio: np.ndarray, how: Recording, path: Path) -> None:
    """Writes the file; declaring another input rate moves pitch and tempo together, as a tape does."""
    declared = round(how.rate * 2 ** (how.cents / 1200))
    data = (np.clip(audio, -1, 1) * 32767).astype("<i2").tobytes()
    command = ["ffmpeg", "-v", "error", "-y", "-f", "s16le", "-ar", str(declared), "-ac", "2", "-i", "-",
               "-ar", str(how.rate), *ENCODERS[how.encoder], str(path)]
    subprocess.run(command, input=data, check=True)


def decode(path: Path) -> np.ndarray:
    """The samples as the helper's own decoder command gives them."""
    decoded = subprocess.run(decoding.command(str(path)), check=True, stdout=subprocess.PIPE).stdout
    return np.frombuffer(decoded, np.float32)


def record(song: Song, how: Recording, sung: list[Note] | None = None) -> np.ndarray:
    """Renders `song` (with `sung` as a voice), spoils, encodes and decodes it."""
    with tempfile.TemporaryDirectory(dir="/dev/shm") as name:
        folder = Path(name)
        audio = synthesize(song, how, folder)
        if sung:
            audio = add_voice(audio, sung, midi_file.seconds_per_tick(song), how)
        audio = spoil(audio, how)
        target = folder / f"song.{how.encoder}"
        encode(audio, how, target)
        return decode(target)
