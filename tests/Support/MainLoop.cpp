// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/MainLoop.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <chrono>

namespace tonvale::test {

bool spinUntil(const std::function<bool()>& condition)
{
    if (condition()) {
        return true;
    }
    const QDeadlineTimer deadline(std::chrono::seconds(30));
    bool isTrue = false;
    QEventLoop loop;
    QTimer look;
    look.callOnTimeout([&] {
        isTrue = condition();
        if (isTrue || deadline.hasExpired()) {
            loop.quit();
        }
    });
    look.start(std::chrono::milliseconds(1));
    loop.exec();
    return isTrue;
}

void runQueuedCalls()
{
    QCoreApplication::sendPostedEvents();
}

}  // namespace tonvale::test
