# SPDX-FileCopyrightText: 2026 The Tonvale Authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The pixels of the virtual display, read from the file in which it keeps them."""

from __future__ import annotations

import struct
from dataclasses import dataclass
from pathlib import Path

import numpy as np


@dataclass(frozen=True)
class Area:
    """A rectangle on the screen, in pixels."""

    x: int
    y: int
    width: int
    height: int

    @property
    def middle(self) -> tuple[int, int]:
        return self.x + self.width // 2, self.y + self.height // 2

    @property
    def bottom(self) -> int:
        return self.y + self.height

    @property
    def right(self) -> int:
        return self.x + self.width

    def overlaps(self, other: Area) -> bool:
        return self.x < other.right and other.x < self.right and self.y < other.bottom and other.y < self.bottom

    def contains(self, other: Area) -> bool:
        return self.x <= other.x and other.right <= self.right and self.y <= other.y and other.bottom <= self.bottom

    def grown(self, by: int) -> Area:
        return Area(self.x - by, self.y - by, self.width + 2 * by, self.height + 2 * by)


class Screen:
    """The display's frame buffer, an X window dump of 32-bit pixels."""

    def __init__(self, file: Path, size: tuple[int, int]) -> None:
        self._pixels = np.memmap(file, dtype=np.uint8, mode="r")
        self._size = size

    def picture(self, area: Area) -> np.ndarray:
        """The pixels of an area as they are now. @return rows x columns x (red, green, blue)"""
        header = struct.unpack(">25I", self._pixels[:100].tobytes())
        start, row_bytes, colours = header[0], header[12], header[19]
        width, height = self._size
        begin = start + colours * 12  # a colour map entry has 12 bytes
        rows = np.array(self._pixels[begin : begin + row_bytes * height]).reshape(height, row_bytes)
        pixels = rows[:, : width * 4].reshape(height, width, 4)[:, :, 2::-1]
        return pixels[max(area.y, 0) : area.bottom, max(area.x, 0) : area.right]

    def brightness(self, area: Area) -> float:
        """The mean of an area's pixels, 0 black, 255 white."""
        return float(self.picture(area).mean())


def changed_pixels(before: np.ndarray, after: np.ndarray) -> int:
    """How many pixels differ by more than an anti-aliased edge may."""
    return int((np.abs(before.astype(int) - after.astype(int)).max(axis=2) > 24).sum())
