// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Output/PulseMainLoop.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>

struct pa_context;
struct pa_operation;

namespace tonvale {

/// A moment by which the server has to have answered.
class Deadline {
public:
    explicit Deadline(std::chrono::milliseconds time) : end_(Clock::now() + time) {}
    /// Never negative.
    [[nodiscard]] std::chrono::microseconds timeLeft() const
    {
        const auto left = std::chrono::ceil<std::chrono::microseconds>(end_ - Clock::now());
        return std::max(left, std::chrono::microseconds(0));
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point end_;
};

/// A connection to the desktop's sound server; no server is ever started.
/// Every function is called with the main loop's lock held.
class PulseConnection {
public:
    /// Returns once the server has let us in. @error PlatformError
    PulseConnection(const PulseMainLoop& loop, const Deadline& deadline);

    [[nodiscard]] pa_context* get() const noexcept { return context_.get(); }
    [[nodiscard]] const PulseMainLoop& loop() const noexcept { return loop_; }

    /// In frames per second, of the device that new streams go to. @error PlatformError
    [[nodiscard]] std::uint32_t deviceSampleRate(const Deadline& deadline);

    /// Waits for the end of `operation`, which may be null, and lets go of it.
    /// @return false when it failed or did not end in time
    [[nodiscard]] bool complete(pa_operation* operation, const Deadline& deadline) const;

    /// What the library says went wrong last, or that time is up. @error PlatformError, always
    [[noreturn]] void fail() const;

private:
    struct Disconnect {
        void operator()(pa_context* context) const noexcept;
    };

    const PulseMainLoop& loop_;
    std::unique_ptr<pa_context, Disconnect> context_;
};

}  // namespace tonvale
