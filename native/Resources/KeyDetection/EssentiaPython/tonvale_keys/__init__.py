# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Key, scale, confidence and tempo of a recorded song, with numpy and the ffmpeg program alone."""
