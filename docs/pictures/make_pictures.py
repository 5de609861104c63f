#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Tonvale Authors
#
# SPDX-License-Identifier: GPL-3.0-or-later

"""Draws the pictures of docs/time-pitch-engine.md from the engine's formulas.

Needs python3-numpy and python3-matplotlib; writes SVG files beside itself, the same on every run.
"""

import pathlib

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt
import numpy as np

FOLDER = pathlib.Path(__file__).parent
RATE = 44100
LAYERS = [  # attack, release (frames), colour, label
    (4864, 2048, "tab:blue", "layer 0, up to 1 kHz"),
    (2048, 2048, "tab:orange", "layer 1, 1 ... 3.5 kHz"),
    (1024, 1024, "tab:green", "layer 2, from 3.5 kHz"),
]
CROSSOVERS = [(1000, 300), (3500, 600)]


def analysis_window(attack, release):
    x = np.arange(-attack, release)
    return x, np.cos(np.pi * x / 2 / np.where(x < 0, attack, release)) ** 2


def product_window(release):
    x = np.arange(-release, release)
    return x, np.cos(np.pi * x / 2 / release) ** 4


def raised_cosine(u):
    return 0.5 - 0.5 * np.cos(np.pi * np.clip(u, 0, 1))


def hann_rise(u):
    u = np.clip(u, 0, 1)
    return u - np.sin(2 * np.pi * u) / (2 * np.pi)


def save(figure, name):
    figure.tight_layout()
    figure.savefig(FOLDER / name, metadata={"Date": None})
    plt.close(figure)


def draw_windows():
    figure, axes = plt.subplots(1, 2, figsize=(9, 3), sharey=True)
    for attack, release, colour, label in LAYERS:
        x, w = analysis_window(attack, release)
        axes[0].plot(x / RATE * 1000, w, colour, label=label)
        x, p = product_window(release)
        axes[1].plot(x / RATE * 1000, p, colour, label=label)
    axes[0].set_title("analysis window")
    axes[1].set_title("what is heard of a frame")
    axes[0].legend(fontsize=7, loc="upper left")
    for axis in axes:
        axis.set_xlabel("ms from the reference")
        axis.set_xlim(-115, 50)
    save(figure, "windows.svg")


def draw_bands():
    f = np.linspace(0, 6000, 2000)
    (c0, w0), (c1, w1) = CROSSOVERS
    first = raised_cosine((f - c0 + w0) / (2 * w0))
    second = raised_cosine((f - c1 + w1) / (2 * w1))
    figure, axis = plt.subplots(figsize=(7, 2.4))
    for values, layer in zip((1 - first, first * (1 - second), second), LAYERS):
        axis.plot(f, values, layer[2], label=layer[3])
    axis.set_xlabel("frequency of the input, Hz")
    axis.set_ylabel("band weight")
    axis.legend(fontsize=7)
    save(figure, "bands.svg")


def draw_overlap():
    release, hop = 2048, 1024
    span = np.arange(-3000, 6000)
    total = np.zeros(len(span))
    figure, axis = plt.subplots(figsize=(7, 2.4))
    unity = hop / np.sum(product_window(release)[1])
    for frame in range(-6, 9):
        p = np.where(np.abs(span - frame * hop) < release,
                     np.cos(np.pi * (span - frame * hop) / 2 / release) ** 4, 0) * unity
        total += p
        axis.plot(span / RATE * 1000, p, "tab:orange", lw=0.8)
    axis.plot(span / RATE * 1000, total, "k", label="sum")
    axis.set_xlabel("ms")
    axis.legend(fontsize=7)
    save(figure, "overlap.svg")


def draw_gate():
    """An onset at 0: the frames that hold its new part, the gate, and what follows."""
    release, hop = 2048, 1024
    t = np.arange(-2600, 3200)
    unity = hop / np.sum(product_window(release)[1])
    frames = np.arange(0, 7) * hop - 300  # the first from half a hop before the onset on
    windows = [np.where(np.abs(t - frame) < release,
                        np.cos(np.pi * (t - frame) / 2 / release) ** 4, 0) * unity
               for frame in frames]
    gated = sum(w for w, frame in zip(windows, frames) if frame < release)
    later = sum(w for w, frame in zip(windows, frames) if frame >= release)
    fade = int(0.0015 * RATE)
    gate = raised_cosine((t + fade) / fade) / np.maximum(gated + later, 0.3)
    ms = t / RATE * 1000
    figure, axes = plt.subplots(2, 1, figsize=(7, 4), sharex=True)
    for w, frame in zip(windows, frames):
        axes[0].plot(ms, w, "tab:orange" if frame < release else "tab:blue", lw=0.8)
    axes[0].plot(ms, gated, "k", label="sum of the frames within a window of the onset")
    axes[1].plot(ms, gate, "tab:red", label="gate, divided by the sum of windows")
    axes[1].plot(ms, gated * gate, "tab:orange", label="new part, gated")
    axes[1].plot(ms, later, "tab:blue", label="later frames, heard as ever")
    axes[1].set_xlabel("ms from the onset")
    axes[1].set_ylim(-0.05, 1.6)
    for axis in axes:
        axis.legend(fontsize=7)
    save(figure, "gate.svg")


def fitted_taps(offset, chirp, attack, release):
    size = attack + release
    n = np.arange(-release, release, 16)  # smooth curves need no more points
    x = 2 * np.pi * n / size
    weight = np.cos(np.pi * n / 2 / release) ** 4
    basis = np.exp(1j * np.outer(x, (-2, -1, 0, 1, 2)))
    wanted = np.exp(1j * (offset * x + chirp * (1 - np.cos(x))))
    root = np.sqrt(weight)
    taps = np.linalg.lstsq(basis * root[:, None], wanted * root, rcond=None)[0]
    return x, weight, basis @ taps, wanted


def draw_kernel():
    figure, axes = plt.subplots(1, 2, figsize=(9, 2.8))
    for axis, (offset, chirp) in zip(axes, ((0.5, 0), (0.25, 1.0))):
        x, weight, got, wanted = fitted_taps(offset, chirp, 2048, 2048)
        axis.plot(x, np.unwrap(np.angle(wanted)), "k", label="wanted phase")
        axis.plot(x, np.unwrap(np.angle(got)), "tab:red", label="five taps")
        axis.fill_between(x, weight * 1.5 - 1.5, -1.5, color="0.9", label="heard window")
        axis.set_title("half a bin" if chirp == 0 else "a quarter of a bin and a chirp",
                       fontsize=9)
        axis.set_xlabel("place in the frame, rad")
    axes[0].legend(fontsize=7)
    save(figure, "kernel.svg")


def draw_ratio_change():
    hop, release = 1024, 2048
    t = np.arange(-2600, 2600)
    border = 0
    half = int(0.0015 * RATE)
    after = hann_rise((t - border + half) / (2 * half))
    unity = hop / np.sum(product_window(release)[1])
    figure, axis = plt.subplots(figsize=(7, 2.6))
    for frame in range(-4, 5):
        place = frame * hop + hop // 2
        p = np.where(np.abs(t - place) < release,
                     np.cos(np.pi * (t - place) / 2 / release) ** 4, 0) * unity
        axis.plot(t / RATE * 1000, p, "tab:blue" if frame < 0 else "tab:orange", lw=0.8)
    axis.plot(t / RATE * 1000, 1 - after, "tab:blue", label="old pitch, made whole and faded")
    axis.plot(t / RATE * 1000, after, "tab:orange", label="new pitch")
    axis.set_xlabel("ms from the border, half a hop before the first new frame")
    axis.legend(fontsize=7)
    save(figure, "change.svg")


def main():
    plt.rcParams["svg.hashsalt"] = "tonvale"
    for draw in (draw_windows, draw_bands, draw_overlap, draw_gate, draw_kernel, draw_ratio_change):
        draw()


if __name__ == "__main__":
    main()
