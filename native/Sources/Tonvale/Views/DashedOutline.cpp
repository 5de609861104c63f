// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Views/DashedOutline.h"

#include <QPainter>
#include <QPen>

namespace tonvale {

DashedOutline::DashedOutline(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    connect(this, &DashedOutline::looksChanged, this, [this] { update(); });
}

void DashedOutline::paint(QPainter* painter)
{
    constexpr qreal width = 2;
    QPen pen(color_, width, Qt::CustomDashLine, Qt::FlatCap, Qt::MiterJoin);
    pen.setDashPattern({4 / width, 3 / width});  // in widths of the pen
    pen.setMiterLimit(10);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(pen);
    painter->setBrush(Qt::NoBrush);
    const QRectF outline = boundingRect().adjusted(width / 2, width / 2, -width / 2, -width / 2);
    painter->drawRoundedRect(outline, radius_, radius_);
}

}  // namespace tonvale
