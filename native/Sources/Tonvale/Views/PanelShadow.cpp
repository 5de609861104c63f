// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Views/PanelShadow.h"

#include "Tonvale/Views/NinePatch.h"
#include "Tonvale/Views/ShadowMask.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace tonvale {

PanelShadow::PanelShadow(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    connect(this, &PanelShadow::looksChanged, this, &PanelShadow::forgetTile);
}

qreal PanelShadow::reach() const noexcept
{
    // Three standard deviations: what lies beyond is less than one step of grey.
    return std::ceil(blurRadius_ * 1.5);
}

void PanelShadow::forgetTile()
{
    tile_ = {};
    update();
}

const QImage& PanelShadow::tile(QSize size, qreal scale)
{
    if (tile_.size() != size) {
        const ShadowShape shape{size, reach() * scale, radius_ * scale, blurRadius_ * scale / 2};
        tile_ = shadowImage(shape, color_);
    }
    return tile_;
}

void PanelShadow::paint(QPainter* painter)
{
    // Painted in device pixels, so that the nine parts meet without a seam at any scale.
    const qreal scale = painter->device()->devicePixelRatio() * painter->worldTransform().m11();
    const QSize size = (boundingRect().size() * scale).toSize();
    const int corner = static_cast<int>(std::ceil((2 * reach() + radius_) * scale));
    const QSize tileSize = size.boundedTo({2 * corner + 1, 2 * corner + 1});
    if (tileSize.isEmpty()) {
        return;
    }
    painter->save();
    painter->scale(1 / scale, 1 / scale);
    drawNinePatch(*painter, tile(tileSize, scale), size, corner);
    painter->restore();
}

}  // namespace tonvale
