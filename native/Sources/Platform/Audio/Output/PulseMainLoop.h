// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <functional>

struct pa_mainloop_api;
struct pa_threaded_mainloop;

namespace tonvale {

/// The thread in which the sound library talks to its server, and the lock that goes with it: the
/// library's objects are touched in that thread, or while holding a Lock.
class PulseMainLoop {
public:
    /// @error PlatformError
    PulseMainLoop();
    ~PulseMainLoop();  ///< ends the thread; waits for no server
    PulseMainLoop(const PulseMainLoop&) = delete;
    PulseMainLoop& operator=(const PulseMainLoop&) = delete;

    /// Keeps the thread out of its callbacks while it exists; not to be taken inside of one.
    class Lock {
    public:
        explicit Lock(const PulseMainLoop& loop) noexcept;
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        pa_threaded_mainloop* loop_;
    };

    [[nodiscard]] pa_mainloop_api& api() const noexcept { return *api_; }

    /// Lets waitFor() look again. @thread the loop's own
    void wake() const noexcept;

    /// Opens the lock that the caller holds until `condition` is true, which is looked at whenever
    /// wake() was called. @return false when it did not come true within the time
    [[nodiscard]] bool waitFor(std::chrono::microseconds time,
                               const std::function<bool()>& condition) const;

private:
    pa_threaded_mainloop* loop_;
    pa_mainloop_api* api_ = nullptr;
};

}  // namespace tonvale
