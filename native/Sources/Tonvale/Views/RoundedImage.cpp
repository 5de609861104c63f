// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Views/RoundedImage.h"

#include <QPainter>
#include <QPainterPath>
#include <QQmlEngine>
#include <QQmlFile>
#include <QQuickImageProvider>

namespace tonvale {

namespace {

QImage provided(QQuickImageProvider& provider, const QString& id, QSize requested)
{
    QSize size;
    switch (provider.imageType()) {
    case QQmlImageProviderBase::Image:
        return provider.requestImage(id, &size, requested);
    case QQmlImageProviderBase::Pixmap:
        return provider.requestPixmap(id, &size, requested).toImage();
    default:
        return {};  // no provider of textures or of late answers is asked for here
    }
}

}  // namespace

RoundedImage::RoundedImage(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    connect(this, &RoundedImage::looksChanged, this, [this] { update(); });
}

QImage RoundedImage::image(QSize size) const
{
    if (source_.scheme() != QLatin1String("image")) {
        return QImage(QQmlFile::urlToLocalFileOrQrc(source_));
    }
    const QQmlEngine* engine = qmlEngine(this);
    auto* provider = engine != nullptr
                         ? dynamic_cast<QQuickImageProvider*>(engine->imageProvider(source_.host()))
                         : nullptr;
    return provider != nullptr ? provided(*provider, source_.path().mid(1), size) : QImage();
}

void RoundedImage::paint(QPainter* painter)
{
    const qreal scale = painter->device()->devicePixelRatio() * painter->worldTransform().m11();
    const QSize size = (boundingRect().size() * scale).toSize();
    const QImage whole = image(size);
    if (whole.isNull()) {
        return;
    }
    // Scaled in one good step first: a painter that scales down by much skips pixels.
    QImage fitted = whole.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    fitted.setDevicePixelRatio(1);
    QRectF frame(QPointF(), QSizeF(fitted.size()) / scale);
    frame.moveCenter(boundingRect().center());

    QBrush brush(fitted);
    brush.setTransform(QTransform::fromTranslate(frame.x(), frame.y()).scale(1 / scale, 1 / scale));
    QPainterPath corners;
    corners.addRoundedRect(boundingRect(), radius_, radius_);
    QPainterPath area;
    area.addRect(frame);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->fillPath(corners.intersected(area), brush);
}

}  // namespace tonvale
