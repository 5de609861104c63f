// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Views/NinePatch.h"

#include <array>

namespace tonvale {

namespace {

/// Where one part lies along one axis, in the tile and on the target.
struct Span {
    int source;
    int sourceLength;
    int target;
    int targetLength;
};

std::array<Span, 3> spans(int tileLength, int length, int corner)
{
    if (tileLength >= length) {
        return {Span{0, length, 0, length}, Span{}, Span{}};
    }
    const int middle = tileLength - 2 * corner;
    return {Span{0, corner, 0, corner}, Span{corner, middle, corner, length - 2 * corner},
            Span{corner + middle, corner, length - corner, corner}};
}

}  // namespace

void drawNinePatch(QPainter& painter, const QImage& tile, QSize size, int corner)
{
    for (const Span& row : spans(tile.height(), size.height(), corner)) {
        for (const Span& column : spans(tile.width(), size.width(), corner)) {
            if (row.targetLength > 0 && column.targetLength > 0) {
                painter.drawImage(
                    QRect(column.target, row.target, column.targetLength, row.targetLength), tile,
                    QRect(column.source, row.source, column.sourceLength, row.sourceLength));
            }
        }
    }
}

}  // namespace tonvale
