// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QImage>
#include <QPainter>

namespace tonvale {

/// Draws `tile` over `size` with its corners kept as they are and its middle row and column
/// stretched. A tile as large as `size` in one direction is not stretched in it.
/// @param corner  edge length of the corners, pixels of the tile
/// @thread ANY that may use `painter`
void drawNinePatch(QPainter& painter, const QImage& tile, QSize size, int corner);

}  // namespace tonvale
