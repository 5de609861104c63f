// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QIcon>
#include <QQuickPaintedItem>
#include <QtQml>

namespace tonvale {

/// Shows an icon as large as the item, in the drawing made for that size.
/// @thread CONTROL
class IconItem : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QIcon icon READ icon WRITE setIcon NOTIFY iconChanged)

public:
    using QQuickPaintedItem::QQuickPaintedItem;

    [[nodiscard]] QIcon icon() const { return icon_; }
    void setIcon(const QIcon& icon);
    void paint(QPainter* painter) override;

signals:
    void iconChanged();

private:
    QIcon icon_;
};

}  // namespace tonvale
