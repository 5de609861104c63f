// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/Timer.h"

#include <QCoreApplication>

#include <utility>

namespace tonvale {

Timer::Timer(std::chrono::milliseconds interval, std::function<void()> tick)
    : tick_(std::move(tick))
{
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.callOnTimeout([this] { fire(); });
    timer_.start(interval);
}

void Timer::fire() const
{
    QMetaObject::invokeMethod(QCoreApplication::instance(), tick_, Qt::QueuedConnection);
}

}  // namespace tonvale
