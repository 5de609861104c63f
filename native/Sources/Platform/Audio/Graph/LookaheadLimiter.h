// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFormat.h"
#include "Platform/Audio/AudioPCMBuffer.h"
#include "Platform/Audio/Graph/SlidingMinimum.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tonvale {

/// Keeps peaks from clipping by turning the level down around them.
///
/// A look-ahead brickwall limiter: the gain each frame needs is held over the look-ahead, let go
/// slowly, and smoothed by a moving average as long as the look-ahead, so that it has arrived
/// before the peak has. All channels share one gain, so the stereo image stays where it is.
/// While nothing exceeds full scale, and once a past peak is let go, every sample comes out as it
/// went in, bit for bit.
///
/// Method: hold, release and smoothing as in D. Giannoulis et al., "Digital dynamic range
/// compressor design", JAES 60(6), 2012, with a feed-forward peak detector.
/// @thread construction: CONTROL; process and reset: WORKER, no allocation, no lock
class LookaheadLimiter {
public:
    LookaheadLimiter(const AudioFormat& format, std::uint32_t maximumFrameCount);

    /// How many frames the output lags behind the input.
    [[nodiscard]] std::uint32_t latencyFrames() const noexcept { return lookahead_; }

    /// Frames before a position whose peaks can still hold the level down there, unless one
    /// exceeded full scale by more than 3 dB.
    [[nodiscard]] std::uint32_t prerollFrames() const noexcept;

    /// As after construction.
    void reset() noexcept;

    /// Replaces the valid frames of `buffer` by those that went in latencyFrames() earlier;
    /// silence went in before the first. Samples leave in [-1, 1]; those
    /// that are no numbers, or infinite, as silence.
    void process(AudioPCMBuffer& buffer) noexcept;

private:
    [[nodiscard]] bool isAtRest() const noexcept;
    void computeGains(const AudioPCMBuffer& buffer) noexcept;
    [[nodiscard]] float smooth(float gain) noexcept;
    [[nodiscard]] std::span<const float> delay(std::vector<float>& past,
                                               std::span<const float> samples) noexcept;

    std::uint32_t lookahead_;
    float releasePerFrame_;
    SlidingMinimum hold_;
    float releasedGain_ = 1.0F;
    std::vector<float> smoothing_;  // the last lookahead_ + 1 gains, a ring
    std::size_t smoothingPlace_ = 0;
    double smoothingSum_;
    std::uint32_t reducedCount_ = 0;         // how many of them are below 1
    std::vector<std::vector<float>> pasts_;  // the last lookahead_ frames of each channel
    std::vector<float> delayed_;             // a channel's past and present, one after the other
    std::vector<float> gains_;
};

}  // namespace tonvale
