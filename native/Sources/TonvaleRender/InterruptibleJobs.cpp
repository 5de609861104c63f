// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/InterruptibleJobs.h"

#include <chrono>
#include <utility>

namespace tonvale {

namespace {

/// A signal handler may not wake a thread that waits for the jobs, so it looks by itself: often
/// enough to seem immediate, rarely enough to cost nothing.
constexpr auto lookInterval = std::chrono::milliseconds(50);

}  // namespace

void InterruptibleJobs::add(std::size_t rank, JobQueue::Job job)
{
    queue_.add(rank, std::move(job));
}

bool InterruptibleJobs::areInterrupted() const noexcept
{
    return interruption_.signalNumber() != 0;
}

void InterruptibleJobs::finish(const std::function<void()>& beforeEnd)
{
    while (!queue_.waitUntilDone(lookInterval) && !areInterrupted()) {
    }
    if (areInterrupted()) {
        unfinishedOutputs_.interrupt();
        beforeEnd();
        endBySignal(interruption_.signalNumber());
    }
}

}  // namespace tonvale
