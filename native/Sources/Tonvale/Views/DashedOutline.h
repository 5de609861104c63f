// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QColor>
#include <QQuickPaintedItem>

namespace tonvale {

/// A rounded rectangle in dashes of 4 with gaps of 3, 2 wide, whose middle lies 1 inside the item's
/// edge: let the item stand out 1 around what it outlines.
/// @thread CONTROL
class DashedOutline : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor color MEMBER color_ NOTIFY looksChanged)
    /// Corners of the outlined rectangle, logical pixels.
    Q_PROPERTY(qreal radius MEMBER radius_ NOTIFY looksChanged)

public:
    explicit DashedOutline(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

signals:
    void looksChanged();

private:
    QColor color_ = Qt::black;
    qreal radius_ = 0;
};

}  // namespace tonvale
