// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QMimeData>
#include <QObject>
#include <QPointF>
#include <QQuickWindow>
#include <QUrl>

namespace tonvale {

/// Sends a window the events of a drag that comes from another program.
class DragSimulator : public QObject {
    Q_OBJECT

public:
    /// @return whether the window would take a drop there
    Q_INVOKABLE bool enterWithUrls(QQuickWindow* window, QPointF position, const QList<QUrl>& urls);
    Q_INVOKABLE bool enterWithText(QQuickWindow* window, QPointF position, const QString& text);
    /// @return whether the window would take a drop there
    Q_INVOKABLE bool move(QQuickWindow* window, QPointF position);
    Q_INVOKABLE void leave(QQuickWindow* window);
    /// @return what the window did with the drop: "refused", "copied", or "moved"
    Q_INVOKABLE QString drop(QQuickWindow* window, QPointF position);

private:
    bool enter(QQuickWindow* window, QPointF position);

    QMimeData data_;
};

}  // namespace tonvale
