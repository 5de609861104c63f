// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "TonvaleRender/Interruption.h"
#include "TonvaleRender/JobQueue.h"
#include "TonvaleRender/UnfinishedOutputs.h"

#include <cstddef>
#include <functional>

namespace tonvale {

/// Runs the jobs of a command until all are done or the user asks to stop; then the outputs that
/// are not whole are removed and the process ends by the signal. Whoever is only reading a song at
/// that time is not waited for.
/// One per process.
class InterruptibleJobs {
public:
    /// @param threadCount  1 or more
    /// @error std::system_error when a thread cannot be had
    explicit InterruptibleJobs(unsigned threadCount) : queue_(threadCount) {}

    /// As JobQueue::add.
    /// @thread ANY
    void add(std::size_t rank, JobQueue::Job job);

    /// @thread ANY
    [[nodiscard]] UnfinishedOutputs& unfinishedOutputs() noexcept { return unfinishedOutputs_; }
    /// Whether what fails now may have failed of the interruption: it struck helpers as well.
    /// @thread ANY
    [[nodiscard]] bool areInterrupted() const noexcept;

    /// Returns when all is done. @param beforeEnd  the last words before the signal ends it all
    /// @thread CONTROL
    void finish(const std::function<void()>& beforeEnd);

private:
    Interruption interruption_;
    UnfinishedOutputs unfinishedOutputs_;
    JobQueue queue_;  // last: its jobs use the others
};

}  // namespace tonvale
