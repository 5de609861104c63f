// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/JobQueue.h"

#include <utility>

namespace tonvale {

JobQueue::JobQueue(unsigned threadCount)
{
    for (unsigned count = 0; count < threadCount; ++count) {
        threads_.emplace_back([this](const std::stop_token& stop) { work(stop); });
    }
}

JobQueue::~JobQueue()
{
    for (std::jthread& thread : threads_) {
        thread.request_stop();
    }
}

void JobQueue::add(std::size_t rank, Job job)
{
    const std::lock_guard lock(mutex_);
    waiting_.emplace(rank, std::move(job));
    changed_.notify_all();
}

bool JobQueue::waitUntilDone(std::chrono::milliseconds atMost)
{
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, atMost, [this] { return waiting_.empty() && running_ == 0; });
}

void JobQueue::work(const std::stop_token& stop)
{
    std::unique_lock lock(mutex_);
    while (changed_.wait(lock, stop, [this] { return !waiting_.empty(); })
           && !stop.stop_requested()) {
        runFirst(lock);
    }
}

void JobQueue::runFirst(std::unique_lock<std::mutex>& lock)
{
    {
        const Job job = std::move(waiting_.extract(waiting_.begin()).mapped());
        ++running_;
        lock.unlock();
        job();
    }
    lock.lock();  // the job and all it holds are gone by now
    --running_;
    changed_.notify_all();
}

}  // namespace tonvale
