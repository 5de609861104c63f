// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QTimer>

#include <chrono>
#include <functional>

namespace tonvale {

/// Calls a function again and again on the main thread, each time out of the event queue and so in
/// turn with everything else there.
/// @thread CONTROL
class Timer {
public:
    /// The first call comes after one interval.
    Timer(std::chrono::milliseconds interval, std::function<void()> tick);
    /// Fires no more. A call that is queued already still comes.
    ~Timer() = default;
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    /// Queues one call; the end of each interval does this.
    void fire() const;

private:
    QTimer timer_;
    std::function<void()> tick_;
};

}  // namespace tonvale
