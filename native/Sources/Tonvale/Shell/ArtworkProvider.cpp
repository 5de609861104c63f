// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Shell/ArtworkProvider.h"

#include "Tonvale/Shell/AppArtwork.h"

namespace tonvale {

namespace {

constexpr int largestSize = 512;  // pixels, where the view does not say

int pixels(const QSize& requestedSize)
{
    const int asked = qMax(requestedSize.width(), requestedSize.height());
    return asked > 0 ? asked : largestSize;
}

}  // namespace

ArtworkProvider::ArtworkProvider() : QQuickImageProvider(Pixmap) {}

QPixmap ArtworkProvider::requestPixmap(const QString& /*id*/, QSize* size,
                                       const QSize& requestedSize)
{
    const int side = pixels(requestedSize);
    const QPixmap pixmap = AppArtwork::icon().pixmap(QSize(side, side), 1.0);
    if (size != nullptr) {
        *size = pixmap.size();
    }
    return pixmap;
}

}  // namespace tonvale
