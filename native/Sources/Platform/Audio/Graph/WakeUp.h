// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <semaphore.h>

namespace tonvale {

/// Lets a thread sleep until it is called. A call that finds it awake is kept for the next wait();
/// several of them count as one.
class WakeUp {
public:
    WakeUp() noexcept { ::sem_init(&semaphore_, 0, 0); }
    WakeUp(const WakeUp&) = delete;
    WakeUp& operator=(const WakeUp&) = delete;
    ~WakeUp() { ::sem_destroy(&semaphore_); }

    /// @thread ANY, also AUDIO: no lock, no wait
    void call() noexcept { ::sem_post(&semaphore_); }

    /// @thread the one that is called
    void wait() noexcept
    {
        while (::sem_wait(&semaphore_) != 0) {  // a signal handler ran
        }
        while (::sem_trywait(&semaphore_) == 0) {
        }
    }

private:
    ::sem_t semaphore_;
};

}  // namespace tonvale
