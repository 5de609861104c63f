// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace tonvale {

/// Counts the outputs that are being written, so that an interrupted program can end as soon as
/// the last of them is removed, and no sooner.
class UnfinishedOutputs {
public:
    /// Thrown through a render to end it.
    struct Interrupted {};

    /// One output, from before its file is touched until it is whole, given up or removed.
    class Entry {
    public:
        /// @error Interrupted: too late to begin
        explicit Entry(UnfinishedOutputs& outputs);
        ~Entry();
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;

        /// @error Interrupted where the render should end
        void check() const;

    private:
        UnfinishedOutputs& outputs_;
    };

    /// Lets no output begin from now on, tells those that have, and blocks until the last is gone.
    /// @thread CONTROL
    void interrupt();

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    unsigned count_ = 0;
    std::atomic<bool> isInterrupted_ = false;
};

}  // namespace tonvale
