// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Views/KeySimulator.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace tonvale {

void KeySimulator::hold(QQuickWindow* window, int key, int repeats)
{
    const auto send = [=](QEvent::Type type, bool isRepeat) {
        QKeyEvent event(type, key, Qt::NoModifier, QString(), isRepeat);
        QCoreApplication::sendEvent(window, &event);
    };
    send(QEvent::KeyPress, false);
    for (int i = 0; i < repeats; ++i) {
        send(QEvent::KeyRelease, true);
        send(QEvent::KeyPress, true);
    }
    send(QEvent::KeyRelease, false);
}

}  // namespace tonvale
