#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Tonvale Authors
#
# SPDX-License-Identifier: GPL-3.0-or-later

"""Draws the picture of docs/architecture.md: layers from top to bottom, a colour for each thread, and the path of a
sample. Writes architecture.svg beside itself, the same on every run.
"""

import pathlib
from xml.sax.saxutils import escape

WIDTH, HEIGHT = 980, 780
MAIN, WORKER, DEVICE, HELPER = "#dbe9f6", "#fde8cf", "#f9d3d3", "#e4e4e4"
COLOURS = [(MAIN, "main thread (CONTROL)"), (WORKER, "threads that render (WORKER)"),
           (DEVICE, "the device's thread (AUDIO)"), (HELPER, "libraries, other processes")]
LAYERS = [  # top, height, name
    (50, 76, "views, shell,\ncommand line"), (136, 66, "model"), (212, 76, "services"),
    (298, 332, "platform"), (640, 66, "libraries")]

svg = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" font-family="sans-serif" '
       'font-size="13" text-anchor="middle">',
       '<defs><marker id="tip" viewBox="0 0 8 8" refX="7" refY="4" markerWidth="7" markerHeight="7" orient="auto">'
       '<path d="M0,0 L8,4 L0,8 z" fill="context-stroke"/></marker></defs>',
       f'<rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>']


def text(x, y, lines, **attributes):
    more = "".join(f' {name.replace("_", "-")}="{value}"' for name, value in attributes.items())
    for row, line in enumerate(lines.split("\n")):
        svg.append(f'<text x="{x}" y="{y + 16 * row}"{more}>{escape(line)}</text>')


def box(x, y, width, height, lines, colour):
    svg.append(f'<rect x="{x}" y="{y}" width="{width}" height="{height}" rx="6" fill="{colour}" stroke="#555"/>')
    title, *rest = lines.split("\n")
    first = y + height / 2 - 8 * len(rest) + 4
    text(x + width / 2, first, title, font_weight="bold")
    if rest:
        text(x + width / 2, first + 16, "\n".join(rest), fill="#333", font_size=12)


def arrow(points, colour="#b03a2e", width=2.5, dashes=""):
    line = " ".join(f"{x},{y}" for x, y in points)
    dashed = f' stroke-dasharray="{dashes}"' if dashes else ""
    svg.append(f'<polyline points="{line}" fill="none" stroke="{colour}" stroke-width="{width}"{dashed} '
               'marker-end="url(#tip)"/>')


for top, height, name in LAYERS:
    svg.append(f'<rect x="10" y="{top}" width="{WIDTH - 20}" height="{height}" rx="8" fill="#fafafa" stroke="#ccc"/>')
    text(20, top + 20, name, text_anchor="start", font_style="italic", fill="#555")

box(140, 60, 180, 56, "Tonvale/Views\nQML and its Theme", MAIN)
box(340, 60, 250, 56, "Tonvale/Shell\nwindow, menus, About, wakefulness", MAIN)
box(690, 60, 270, 56, "TonvaleRender\nkeys as typed, many songs, JobQueue", WORKER)

box(140, 144, 450, 50, "Tonvale/Model: AudioTransposeModel\nall state, every command, the one place that catches", MAIN)

box(140, 222, 170, 56, "AudioPreviewEngine\nTonvale/Audio", MAIN)
box(320, 222, 175, 56, "AudioExportService\na thread an export", WORKER)
box(505, 222, 175, 56, "EssentiaKeyDetector\na thread a detection", WORKER)
box(690, 222, 270, 56, "Tonvale/Keys\nMusicKey, TranspositionInterval: values", MAIN)

box(140, 310, 170, 60, "Platform/Desktop\npanels, drops, scheme,\nsleep, screen readers", MAIN)
box(690, 310, 270, 60, "Platform/Foundation\nerrors, tasks, clock, helper processes", MAIN)

text(435, 322, "Platform/Audio", font_style="italic", fill="#555")
box(140, 400, 100, 66, "AudioFile\nDecoding/", WORKER)
box(260, 400, 145, 66, "AudioPlayerNode\nwhat is scheduled", WORKER)
box(425, 400, 170, 66, "AudioUnitTimePitch\nTimePitch/: analysis\nand synthesis", WORKER)
box(615, 400, 140, 66, "AudioMixerNode\nLookaheadLimiter", WORKER)
box(330, 335, 330, 40, "AudioEngine pulls from the right", MAIN)
box(790, 390, 170, 50, "AudioFile\nEncoding/: 16 bits", WORKER)
box(600, 500, 170, 56, "LiveRenderer\nDeviceConverter", WORKER)
box(790, 500, 170, 56, "SampleRing\nof LiveFeed: 15 ms or less", DEVICE)
box(790, 568, 170, 50, "Output/: callback\ncopies, counts", DEVICE)

box(140, 648, 120, 50, "FFmpeg\ndecoders", HELPER)
box(280, 648, 120, 50, "Qt", HELPER)
box(420, 648, 140, 50, "FFTW", HELPER)
box(580, 648, 180, 50, "python3: tonvale_keys\nthe detection helper", HELPER)
box(790, 648, 80, 50, "libpulse", HELPER)
box(880, 648, 80, 50, "libsndfile", HELPER)

# The path of a sample.
arrow([(200, 760), (200, 698)])
arrow([(200, 648), (200, 466)])
arrow([(240, 433), (260, 433)])
arrow([(405, 433), (425, 433)])
arrow([(595, 433), (615, 433)])
arrow([(755, 420), (790, 420)])
arrow([(680, 466), (680, 500)])
arrow([(770, 528), (790, 528)])
arrow([(875, 556), (875, 568)])
arrow([(830, 618), (830, 648)])
arrow([(830, 698), (830, 745)])
arrow([(960, 415), (970, 415), (970, 672), (960, 672)], width=2)
arrow([(920, 698), (920, 745)])
text(200, 775, "a song's file")
text(812, 760, "loudspeakers")
text(930, 760, "a new file")

for index, (colour, name) in enumerate(COLOURS):
    x = 20 + 235 * index
    svg.append(f'<rect x="{x}" y="14" width="22" height="16" rx="3" fill="{colour}" stroke="#555"/>')
    text(x + 30, 27, name, text_anchor="start")
arrow([(300, 733), (340, 733)])
text(350, 737, "the path of a sample", text_anchor="start")
text(300, 757, "Calls run downwards; outcomes return as calls on the main thread.",
     text_anchor="start", fill="#333", font_size=12)

svg.append("</svg>\n")
pathlib.Path(__file__).with_name("architecture.svg").write_text("\n".join(svg))
