// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QImage>
#include <QQuickPaintedItem>
#include <QUrl>

namespace tonvale {

/// An image with rounded corners, scaled to fit into the item. It is read again whenever the item
/// gets another source, size or screen, and kept nowhere.
/// @thread CONTROL
class RoundedImage : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    /// A file, a resource, or an image of one of the engine's image providers.
    Q_PROPERTY(QUrl source MEMBER source_ NOTIFY looksChanged)
    /// Corners of the item, logical pixels.
    Q_PROPERTY(qreal radius MEMBER radius_ NOTIFY looksChanged)

public:
    explicit RoundedImage(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

signals:
    void looksChanged();

private:
    [[nodiscard]] QImage image(QSize size) const;

    QUrl source_;
    qreal radius_ = 0;
};

}  // namespace tonvale
