// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Support/Program.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

struct pa_simple;

namespace tonvale::test {

/// What a PulseServer's device plays, from now on; stereo.
class Recorder {
public:
    using Clock = std::chrono::steady_clock;

    /// Returns once sound arrives, which may be silence.
    /// @error std::runtime_error when none does
    explicit Recorder(std::uint32_t sampleRate = 48000);
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /// The samples of one channel (0 or 1) so far.
    [[nodiscard]] std::vector<float> channel(std::size_t index) const;
    [[nodiscard]] std::size_t frameCount() const;

    /// Waits until so many frames are there. @return false when they do not come
    [[nodiscard]] bool waitForFrames(std::size_t count);
    /// Waits until `isFound` says so of the newest frames (interleaved).
    [[nodiscard]] bool waitForSound(
        const std::function<bool(const std::vector<float>& samples)>& isFound);
    [[nodiscard]] bool waitForSeconds(double seconds);
    /// Waits until the newest 50 ms are silent.
    [[nodiscard]] bool waitForSilence();

    /// Which frame the device was playing at a moment of the last second, to a few milliseconds.
    [[nodiscard]] double frameAt(Clock::time_point moment) const;

private:
    void record();

    std::uint32_t sampleRate_;
    std::unique_ptr<RunningProgram> silence_;  // without a stream the device delivers nothing
    std::unique_ptr<pa_simple, void (*)(pa_simple*)> stream_;
    mutable std::mutex mutex_;
    std::condition_variable arrival_;
    std::vector<float> samples_;
    std::vector<Clock::time_point> beginnings_;  // when frame 0 was, as each arrival has it
    std::atomic<bool> isEnding_ = false;
    std::thread thread_;
};

}  // namespace tonvale::test
