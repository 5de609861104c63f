// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Graph/AudioNode.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace tonvale {

class RubberBandShifter;

/// Shifts the pitch of its input at unchanged tempo. It renders its input ahead by the shifter's
/// latency, so every sound comes out at the frame where it went in.
class AudioUnitTimePitch final : public AudioNode {
public:
    AudioUnitTimePitch();
    ~AudioUnitTimePitch() override;

    /// Heard from the next rendered block on. @param cents  -1200 ... 1200; 100 to a semitone
    /// @thread ANY
    void setPitch(float cents) noexcept { pitch_.store(cents, std::memory_order_relaxed); }
    [[nodiscard]] float pitch() const noexcept { return pitch_.load(std::memory_order_relaxed); }

    /// The tempo stays as it is: `rate` must be 1; anything else aborts. @thread ANY
    void setRate(float rate) noexcept;

    /// How far ahead of the output the input is read, in frames; 0 before prepare().
    [[nodiscard]] std::uint32_t latencyFrames() const noexcept;

    void prepare(const AudioFormat& format, std::uint32_t maximumFrameCount) override;
    void render(AudioPCMBuffer& buffer, std::uint32_t frameCount) override;

private:
    void renderShifted(AudioPCMBuffer& buffer, std::uint32_t frameCount);

    std::atomic<float> pitch_ = 0.0F;
    std::unique_ptr<RubberBandShifter> shifter_;
    std::uint32_t framesToRunAhead_ = 0;
};

}  // namespace tonvale
