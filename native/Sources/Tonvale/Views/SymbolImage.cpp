// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Views/SymbolImage.h"

#include "Tonvale/Views/SymbolPaths.h"

#include <QPainter>
#include <QPen>

#include <cmath>

namespace tonvale {

SymbolImage::SymbolImage(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    connect(this, &SymbolImage::looksChanged, this, &SymbolImage::takeLooks);
    takeLooks();
}

void SymbolImage::takeLooks()
{
    // Even, so that it ends on a whole pixel at scale 1.5 too.
    const qreal edge = 2 * std::round(fontSize_ * 1.2 / 2);
    setImplicitSize(edge, edge);
    update();
}

void SymbolImage::paint(QPainter* painter)
{
    const Symbol symbol = symbolNamed(name_);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->scale(width() / Symbol::grid, height() / Symbol::grid);
    painter->fillPath(symbol.areas, color_);
    painter->strokePath(symbol.lines,
                        QPen(color_, symbol.lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->strokePath(symbol.fineLines, QPen(color_, symbol.fineLineWidth, Qt::SolidLine,
                                               Qt::RoundCap, Qt::RoundJoin));
}

}  // namespace tonvale
