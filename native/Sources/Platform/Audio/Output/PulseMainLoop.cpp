// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/PulseMainLoop.h"

#include "Platform/Foundation/PlatformError.h"

#include <pulse/pulseaudio.h>

namespace tonvale {

namespace {

/// Wakes a waiting thread once, at the end of its time.
struct Alarm {
    Alarm(const PulseMainLoop& mainLoop, std::chrono::microseconds time) : loop(mainLoop)
    {
        timeval now{};
        event = loop.api().time_new(
            &loop.api(),
            pa_timeval_add(pa_gettimeofday(&now), static_cast<pa_usec_t>(time.count())),
            &Alarm::ring, this);
    }
    ~Alarm() { loop.api().time_free(event); }
    Alarm(const Alarm&) = delete;
    Alarm& operator=(const Alarm&) = delete;

    static void ring(pa_mainloop_api*, pa_time_event*, const timeval*, void* self)
    {
        auto& alarm = *static_cast<Alarm*>(self);
        alarm.rang = true;
        alarm.loop.wake();
    }

    const PulseMainLoop& loop;
    pa_time_event* event = nullptr;
    bool rang = false;
};

}  // namespace

PulseMainLoop::PulseMainLoop() : loop_(pa_threaded_mainloop_new())
{
    if (loop_ == nullptr || pa_threaded_mainloop_start(loop_) != 0) {
        if (loop_ != nullptr) {
            pa_threaded_mainloop_free(loop_);
        }
        throw PlatformError(pa_strerror(PA_ERR_INTERNAL));
    }
    api_ = pa_threaded_mainloop_get_api(loop_);
}

PulseMainLoop::~PulseMainLoop()
{
    pa_threaded_mainloop_stop(loop_);
    pa_threaded_mainloop_free(loop_);
}

void PulseMainLoop::wake() const noexcept
{
    pa_threaded_mainloop_signal(loop_, 0);
}

bool PulseMainLoop::waitFor(std::chrono::microseconds time,
                            const std::function<bool()>& condition) const
{
    const Alarm alarm(*this, time);
    while (!condition()) {
        if (alarm.rang) {
            return false;
        }
        pa_threaded_mainloop_wait(loop_);
    }
    return true;
}

PulseMainLoop::Lock::Lock(const PulseMainLoop& loop) noexcept : loop_(loop.loop_)
{
    pa_threaded_mainloop_lock(loop_);
}

PulseMainLoop::Lock::~Lock()
{
    pa_threaded_mainloop_unlock(loop_);
}

}  // namespace tonvale
