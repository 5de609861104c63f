# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Importing this makes the shipped analysis package importable, so tools and helper share one code."""

import sys
from pathlib import Path

PACKAGE_FOLDER = Path(__file__).resolve().parents[2] / "native/Resources/KeyDetection/EssentiaPython"
sys.path.insert(0, str(PACKAGE_FOLDER))
