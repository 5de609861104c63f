// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Foundation/MainThreadCall.h"
#include "Platform/Foundation/TaskOutcome.h"

#include <QPointer>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

namespace tonvale {

/// How urgent a task is. Every task runs at normal priority all the same: the system has no such
/// classes for threads.
enum class TaskPriority { unspecified, userInitiated };

/// Work away from the main thread whose outcome comes back to it.
///
/// Each task has a thread of its own, so that none waits for another, and nothing waits for the
/// thread: a process may end while it runs.
namespace DetachedTask {

namespace detail {

/// Starts `body` on a thread that nobody waits for. @return null, or why there is no thread
[[nodiscard]] std::exception_ptr startThread(std::function<void()> body);

}  // namespace detail

/// Calls `work()` on a new thread and then, out of the main thread's event queue,
/// `apply(receiver, outcome)` with a const TaskOutcome of work's result. Where the receiver is gone
/// by then, the outcome is dropped.
/// @thread CONTROL
template <class Receiver, class Work, class Apply>
void run(TaskPriority /*priority*/, Receiver& receiver, Work work, Apply apply)
{
    using Outcome = TaskOutcome<std::invoke_result_t<Work&>>;
    const auto outcome = std::make_shared<Outcome>();
    // The receiver is looked at by the main thread alone: elsewhere it could vanish under the look.
    MainThreadCall call([outcome, receiver = QPointer<Receiver>(&receiver), apply] {
        if (receiver) {
            apply(*receiver, std::as_const(*outcome));
        }
    });
    const std::exception_ptr error =
        detail::startThread([outcome, call, work = std::move(work)]() mutable {
            outcome->take(work);
            std::move(call).post();
        });
    if (error) {
        outcome->fail(error);
        std::move(call).post();
    }
}

}  // namespace DetachedTask

}  // namespace tonvale
