// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QColor>
#include <QImage>
#include <QQuickPaintedItem>

namespace tonvale {

/// The soft shadow of a rounded rectangle. The item is the rectangle grown by `reach` on all sides,
/// so that the shadow can run out in it. It is blurred once and stretched to the item's size.
/// @thread CONTROL
class PanelShadow : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color MEMBER color_ NOTIFY looksChanged)
    /// Corners of the rectangle, logical pixels.
    Q_PROPERTY(qreal radius MEMBER radius_ NOTIFY looksChanged)
    /// Twice the standard deviation of the blur, logical pixels.
    Q_PROPERTY(qreal blurRadius MEMBER blurRadius_ NOTIFY looksChanged)
    /// How far the shadow spreads around the rectangle, logical pixels.
    Q_PROPERTY(qreal reach READ reach NOTIFY looksChanged)

public:
    explicit PanelShadow(QQuickItem* parent = nullptr);

    [[nodiscard]] qreal reach() const noexcept;
    void paint(QPainter* painter) override;

signals:
    void looksChanged();

private:
    void forgetTile();
    [[nodiscard]] const QImage& tile(QSize size, qreal scale);

    QColor color_ = Qt::black;
    qreal radius_ = 0;
    qreal blurRadius_ = 0;
    QImage tile_;
};

}  // namespace tonvale
