// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QString>

namespace tonvale {

/// One of our symbols, by name, in one colour. It is a square a little larger than the font size it
/// goes with, and its lines are as heavy as regular text of that size.
/// @thread CONTROL
class SymbolImage : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name MEMBER name_ NOTIFY looksChanged)
    Q_PROPERTY(QColor color MEMBER color_ NOTIFY looksChanged)
    /// Logical pixels.
    Q_PROPERTY(qreal fontSize MEMBER fontSize_ NOTIFY looksChanged)

public:
    explicit SymbolImage(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

signals:
    void looksChanged();

private:
    void takeLooks();

    QString name_;
    QColor color_ = Qt::black;
    qreal fontSize_ = 13;
};

}  // namespace tonvale
