// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/Geometry.h"
#include "Platform/Audio/TimePitch/InputHistory.h"
#include "Platform/Audio/TimePitch/Onset.h"

#include <array>
#include <vector>

namespace tonvale::timepitch {

/// Finds the first sample of every hit from the energy of three bands in blocks of 1.45 ms.
///
/// A block is an onset when its energy is more than six times the mean and twice the maximum of
/// the 24 ms before it, in one of the two upper bands (bass notes rise too softly to have a
/// place). Within 0.1 s of another onset it must be three times that maximum: the first pulses of a
/// voice may each be twice as strong as the one before, but they all belong to one onset. The
/// sample is then the first around it whose squared difference to the one before exceeds 2 % of the
/// largest. The past of a stream is silence, so its first sound is an onset.
/// @thread WORKER, one at a time; only constructing allocates
class OnsetDetector {
public:
    static constexpr std::size_t bandCount = Onset::largestLayerCount;

    OnsetDetector(const Geometry& geometry, unsigned channelCount);

    void reset() noexcept;
    /// Frames before the newest block that advance() looks at.
    [[nodiscard]] static int framesNeeded(const Geometry& geometry) noexcept;
    /// Takes the frames that `input` has got. Onsets are final 20 ms before the newest frame.
    void advance(const InputHistory& input) noexcept;

    [[nodiscard]] const OnsetList& onsets() const noexcept { return onsets_; }
    void forgetOnsetsBefore(Frames position) noexcept { onsets_.forgetBefore(position); }

    /// The largest mean power (summed over channels) of the band of `layer` in any block between
    /// two frames, both included.
    [[nodiscard]] float largestPower(int layer, Frames from, Frames to) const noexcept;

private:
    /// Four numbers that one instruction works on: the filters at midEdge of two channels, then
    /// those at highEdge.
    using Quad = float __attribute__((vector_size(16)));
    struct Filters {  ///< states of the one-pole filters of two channels
        Quad first{};
        Quad second{};
        Quad rumble{};
    };
    static constexpr std::int64_t historyBlocks = 512;
    /// After the bands: the lowest one without its high-pass, whose slow decay would hide how
    /// quickly the input falls silent after a click.
    static constexpr std::size_t lowestEnvelope = bandCount;
    static constexpr std::size_t powerCount = bandCount + 1;
    using Powers = std::array<float, powerCount>;

    [[nodiscard]] float& power(std::size_t band, std::int64_t block) noexcept;
    [[nodiscard]] float power(std::size_t band, std::int64_t block) const noexcept;
    void measureBlock(const InputHistory& input) noexcept;
    void filterPair(Filters& state, const float* a, const float* b, Powers& energy) const noexcept;
    void judgeBlock(const InputHistory& input) noexcept;
    [[nodiscard]] Frames firstSample(const InputHistory& input) noexcept;
    [[nodiscard]] float remainder(std::size_t layer) const noexcept;

    const Geometry& geometry_;
    unsigned channelCount_;
    int blockFrames_;
    Frames shortestGap_;
    Frames joinTime_;
    Frames againTime_;
    std::array<float, bandCount> coefficients_{};
    std::vector<Filters> filters_;  ///< per pair of channels
    Array<float> silence_;          ///< what an odd channel is paired with
    std::array<Array<float>, powerCount> powers_;
    Array<float> differences_;
    std::int64_t block_ = 0;  ///< the next one to look at
    std::int64_t onsetCount_ = 0;
    OnsetList onsets_;
};

}  // namespace tonvale::timepitch
