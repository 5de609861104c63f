// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

namespace tonvale {

/// Runs jobs beside each other, on a fixed number of threads.
class JobQueue {
public:
    using Job = std::function<void()>;

    /// @param threadCount  1 or more
    /// @error std::system_error when a thread cannot be had
    explicit JobQueue(unsigned threadCount);
    /// Drops the jobs that have not begun and waits for those that have.
    ~JobQueue();
    JobQueue(const JobQueue&) = delete;
    JobQueue& operator=(const JobQueue&) = delete;

    /// Jobs of a lower rank come first, those of one rank in the order of their adding.
    /// @param job  handles its errors itself; may add further jobs
    /// @thread ANY
    void add(std::size_t rank, Job job);

    /// @return whether every job is done; false when the time was up
    /// @thread CONTROL
    [[nodiscard]] bool waitUntilDone(std::chrono::milliseconds atMost);

private:
    void work(const std::stop_token& stop);
    /// Runs the first job with `lock` released.
    void runFirst(std::unique_lock<std::mutex>& lock);

    std::mutex mutex_;
    std::condition_variable_any changed_;
    std::multimap<std::size_t, Job> waiting_;  // by rank
    unsigned running_ = 0;
    std::vector<std::jthread> threads_;  // last: they use all of the above
};

}  // namespace tonvale
