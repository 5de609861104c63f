// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Views/DragSimulator.h"

#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QDropEvent>

namespace tonvale {

namespace {

// A file manager that would rather move.
constexpr Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction;

}  // namespace

bool DragSimulator::enter(QQuickWindow* window, QPointF position)
{
    QDragEnterEvent event(position.toPoint(), offered, &data_, Qt::LeftButton, Qt::NoModifier);
    event.setDropAction(Qt::MoveAction);
    QCoreApplication::sendEvent(window, &event);
    return move(window, position);
}

bool DragSimulator::enterWithUrls(QQuickWindow* window, QPointF position, const QList<QUrl>& urls)
{
    data_.clear();
    data_.setUrls(urls);
    return enter(window, position);
}

bool DragSimulator::enterWithText(QQuickWindow* window, QPointF position, const QString& text)
{
    data_.clear();
    data_.setText(text);
    return enter(window, position);
}

bool DragSimulator::move(QQuickWindow* window, QPointF position)
{
    QDragMoveEvent event(position.toPoint(), offered, &data_, Qt::LeftButton, Qt::NoModifier);
    event.setDropAction(Qt::MoveAction);
    event.ignore();
    QCoreApplication::sendEvent(window, &event);
    return event.isAccepted() && event.dropAction() == Qt::CopyAction;
}

void DragSimulator::leave(QQuickWindow* window)
{
    QDragLeaveEvent event;
    QCoreApplication::sendEvent(window, &event);
}

QString DragSimulator::drop(QQuickWindow* window, QPointF position)
{
    QDropEvent event(position, offered, &data_, Qt::LeftButton, Qt::NoModifier);
    event.setDropAction(Qt::MoveAction);
    QCoreApplication::sendEvent(window, &event);
    if (!event.isAccepted()) {
        return QStringLiteral("refused");
    }
    return event.dropAction() == Qt::CopyAction ? QStringLiteral("copied")
                                                : QStringLiteral("moved");
}

}  // namespace tonvale
