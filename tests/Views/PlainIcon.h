// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QImage>
#include <QQuickImageProvider>

namespace tonvale {

/// Stands for the application's artwork: a blue square with square corners.
class PlainIcon : public QQuickImageProvider {
public:
    PlainIcon() : QQuickImageProvider(Image) {}

    QImage requestImage(const QString& /*id*/, QSize* size, const QSize& /*requested*/) override
    {
        QImage image(256, 256, QImage::Format_ARGB32_Premultiplied);
        image.fill(QColor(0x3b, 0x6f, 0xb5));
        *size = image.size();
        return image;
    }
};

}  // namespace tonvale
