# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The sentences shown to the user when a song cannot be analysed."""

from __future__ import annotations

MISSING_FILE = "The audio file could not be found."
UNREADABLE_FILE = "The audio file could not be opened. Check that you may read it."
NOT_AUDIO = "This file is not audio that can be read, or it is damaged."
NO_SOUND_TRACK = "This file has no sound track."
SILENT = "The recording is silent, so it has no key to detect."
TOO_SHORT = "The recording is too short to detect its key."
NO_TONES = "No tones were found in the recording, so its key cannot be detected."
FFMPEG_MISSING = "The program ffmpeg is missing. Install the package ffmpeg to detect keys."
NUMPY_MISSING = "The Python package numpy is missing. Install the package python3-numpy to detect keys."
NO_FILE_GIVEN = "No audio file was given."
UNEXPECTED = "Something went wrong while detecting the key of this recording."


class DetectionError(Exception):
    """The song cannot be analysed; the text says why in plain words."""
