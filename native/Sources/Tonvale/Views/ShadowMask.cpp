// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Views/ShadowMask.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <vector>

namespace tonvale {

namespace {

/// Coverage from 0 to 1, row by row.
using Coverage = std::vector<float>;

Coverage drawnShape(const ShadowShape& shape)
{
    QImage image(shape.size, QImage::Format_Alpha8);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    const QRectF outline =
        QRectF(image.rect())
            .marginsRemoved({shape.margin, shape.margin, shape.margin, shape.margin});
    painter.drawRoundedRect(outline, shape.radius, shape.radius);
    painter.end();

    Coverage coverage;
    coverage.reserve(static_cast<std::size_t>(image.width())
                     * static_cast<std::size_t>(image.height()));
    for (int y = 0; y < image.height(); ++y) {
        const uchar* line = image.constScanLine(y);
        std::transform(line, line + image.width(), std::back_inserter(coverage),
                       [](uchar alpha) { return static_cast<float>(alpha) / 255.0F; });
    }
    return coverage;
}

/// Averages every value with its `radius` neighbours on both sides along one line of `count` values
/// that lie `stride` apart; outside the line there is nothing.
void boxBlurLine(float* line, std::size_t count, std::size_t stride, std::size_t radius,
                 Coverage& copy)
{
    copy.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        copy[i] = line[i * stride];
    }
    float sum = 0;
    for (std::size_t i = 0; i < std::min(radius, count); ++i) {
        sum += copy[i];
    }
    for (std::size_t i = 0; i < count; ++i) {
        sum += i + radius < count ? copy[i + radius] : 0;
        line[i * stride] = sum / static_cast<float>(2 * radius + 1);
        sum -= i >= radius ? copy[i - radius] : 0;
    }
}

/// Three box blurs in a row come within a few per cent of a Gaussian of this width.
std::size_t boxRadius(qreal standardDeviation)
{
    return static_cast<std::size_t>(std::max(
        0.0, std::round((std::sqrt(4 * standardDeviation * standardDeviation + 1) - 1) / 2)));
}

void blur(Coverage& coverage, QSize size, qreal standardDeviation)
{
    const auto width = static_cast<std::size_t>(size.width());
    const auto height = static_cast<std::size_t>(size.height());
    const std::size_t radius = boxRadius(standardDeviation);
    Coverage copy;
    for (int pass = 0; pass < 3; ++pass) {
        for (std::size_t y = 0; y < height; ++y) {
            boxBlurLine(&coverage[y * width], width, 1, radius, copy);
        }
        for (std::size_t x = 0; x < width; ++x) {
            boxBlurLine(&coverage[x], height, width, radius, copy);
        }
    }
}

}  // namespace

QImage shadowImage(const ShadowShape& shape, const QColor& color)
{
    Coverage coverage = drawnShape(shape);
    blur(coverage, shape.size, shape.standardDeviation);

    QImage image(shape.size, QImage::Format_ARGB32_Premultiplied);
    auto value = coverage.cbegin();
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x, ++value) {
            const int alpha = static_cast<int>(std::lround(*value * color.alphaF() * 255.0F));
            line[x] = qPremultiply(qRgba(color.red(), color.green(), color.blue(), alpha));
        }
    }
    return image;
}

}  // namespace tonvale
