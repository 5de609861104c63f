// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QColor>
#include <QImage>
#include <QSize>

namespace tonvale {

/// A rounded rectangle that lies `margin` inside an image of `size`, and how far it is blurred.
/// All lengths in pixels of the image.
struct ShadowShape {
    QSize size;
    qreal margin;
    qreal radius;
    qreal standardDeviation;
};

/// The blurred shape in `color`, premultiplied.
/// @thread ANY
[[nodiscard]] QImage shadowImage(const ShadowShape& shape, const QColor& color);

}  // namespace tonvale
