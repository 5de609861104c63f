// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Output/AudioOutput.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <semaphore>
#include <span>

namespace tonvale::test {

/// A source of tones that gives what it is offered, as a player's ring does. The right side is the
/// left one upside down at half the level.
class ToneSource : public AudioOutputSource {
public:
    static constexpr std::int64_t unlimited = std::numeric_limits<std::int64_t>::max() / 2;

    explicit ToneSource(double sampleRate = 48000) : sampleRate_(sampleRate) {}

    /// Frame `frame` of a tone, which begins at its crest; the left side.
    [[nodiscard]] float tone(double frequency, std::int64_t frame) const noexcept
    {
        const double turns = frequency * static_cast<double>(frame) / sampleRate_;
        return static_cast<float>(0.5 * std::cos(2.0 * std::numbers::pi * turns));
    }

    /// Begins a tone from its first frame; none of it is offered yet. Nothing may be offered.
    void setTone(double frequency)
    {
        frequency_ = frequency;
        next_ = 0;
    }
    void offer(std::int64_t frameCount) { offered_ = frameCount; }
    /// From now on it gives at most so many at a time, and none every other time, as a ring does
    /// that is being filled.
    void giveAtMost(std::int64_t frameCount) { most_ = frameCount; }
    [[nodiscard]] std::int64_t given() const { return next_; }
    /// Waits for somebody to ask. @return false when nobody did
    [[nodiscard]] bool isAskedWithin(std::chrono::milliseconds time)
    {
        isWaitedFor_ = true;
        return asked_.try_acquire_for(time);
    }

    [[nodiscard]] std::uint32_t read(std::span<float> samples) noexcept override
    {
        const auto space = static_cast<std::int64_t>(samples.size() / 2);
        if (isWaitedFor_.exchange(false)) {
            asked_.release();  // the one thing that a player's source would not do here
        }
        isFilling_ = most_ != unlimited && !isFilling_;
        const std::int64_t ready = isFilling_ ? 0 : std::min<std::int64_t>(offered_, most_);
        const std::int64_t count = std::min(ready, space);
        offered_ -= count;
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
            samples[2 * i] = tone(frequency_, next_++);
            samples[2 * i + 1] = -0.5F * samples[2 * i];
        }
        return static_cast<std::uint32_t>(count);
    }

private:
    double sampleRate_;
    std::atomic<double> frequency_ = 997.0;
    std::atomic<std::int64_t> next_ = 0;
    std::atomic<std::int64_t> offered_ = 0;
    std::atomic<std::int64_t> most_ = unlimited;
    bool isFilling_ = false;
    std::atomic<bool> isWaitedFor_ = false;
    std::counting_semaphore<> asked_{0};
};

}  // namespace tonvale::test
