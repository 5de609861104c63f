// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Graph/AudioNode.h"
#include "Platform/Audio/Graph/ReadAhead.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace tonvale {

namespace timepitch {
class PitchShifter;
}

/// Shifts the pitch of its input at unchanged tempo. It renders its input ahead by the engine's
/// latency, so every sound comes out at the frame where it went in.
///
/// Offline it works in large chunks on threads of its own, one ahead of the other: one decodes, one
/// analyses, one puts together, and the caller does with it what it likes. The sound is the same.
class AudioUnitTimePitch final : public AudioNode {
public:
    AudioUnitTimePitch();
    ~AudioUnitTimePitch() override;

    /// Heard from the next rendered block on; offline, from the next chunk that is begun.
    /// @param cents  -1200 ... 1200; 100 to a semitone
    /// @thread ANY
    void setPitch(float cents) noexcept { pitch_.store(cents, std::memory_order_relaxed); }
    [[nodiscard]] float pitch() const noexcept { return pitch_.load(std::memory_order_relaxed); }

    /// The tempo stays as it is: `rate` must be 1; anything else aborts. @thread ANY
    void setRate(float rate) noexcept;

    /// How far ahead of the output the input has to be read, in frames; 0 before prepare().
    [[nodiscard]] std::uint32_t latencyFrames() const noexcept;

    void prepare(const RenderSettings& settings) override;
    /// Renders what lies before the beginning into the shifter, as much of it as has an influence.
    std::uint32_t reset(std::uint32_t prerollFrames) override;
    void render(AudioPCMBuffer& buffer, std::uint32_t frameCount) override;

private:
    /// What runs ahead offline.
    class Shifting final : public AudioNode {
    public:
        explicit Shifting(AudioUnitTimePitch& unit) : unit_(unit) {}
        void render(AudioPCMBuffer& buffer, std::uint32_t frameCount) override
        {
            unit_.shiftChunk(buffer, frameCount);
        }

    private:
        AudioUnitTimePitch& unit_;
    };

    void endAhead() noexcept;
    void takeChunk(std::uint32_t wanted);
    [[nodiscard]] const AudioPCMBuffer& shiftedAhead();
    void shiftChunk(AudioPCMBuffer& shifted, std::uint32_t frameCount);
    [[nodiscard]] const AudioPCMBuffer& takeInput(std::uint32_t frameCount);

    std::atomic<float> pitch_ = 0.0F;
    RenderSettings settings_;
    std::unique_ptr<timepitch::PitchShifter> shifter_;
    std::uint32_t framesToDrop_ = 0;  // of the shifter's latency and preroll, still to come out
    std::unique_ptr<AudioPCMBuffer> unshifted_;
    std::unique_ptr<AudioPCMBuffer> shifted_;  // live only
    const AudioPCMBuffer* chunk_ = nullptr;    // being given away; null before the first
    std::uint32_t chunkPlace_ = 0;             // how much of it was
    std::vector<const float*> inputChannels_;
    std::vector<float*> outputChannels_;
    Shifting shifting_{*this};
    std::optional<ReadAhead> readAhead_;   // offline only, from the first render on
    std::optional<ReadAhead> shiftAhead_;  // last: its thread uses all of the above
};

}  // namespace tonvale
