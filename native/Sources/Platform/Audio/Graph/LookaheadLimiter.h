// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFormat.h"
#include "Platform/Audio/AudioPCMBuffer.h"

#include <cstdint>
#include <memory>
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
/// @thread prepare: CONTROL; process: WORKER, no allocation, no lock
class LookaheadLimiter {
public:
    explicit LookaheadLimiter(const AudioFormat& format);

    /// How many frames the output lags behind the input.
    [[nodiscard]] std::uint32_t latencyFrames() const noexcept { return lookahead_; }

    /// Replaces the valid frames of `buffer` by those that went in latencyFrames() earlier;
    /// silence went in before the first. Samples leave in [-1, 1].
    void process(AudioPCMBuffer& buffer) noexcept;

private:
    /// The least of the last lookahead_ + 1 values, in constant time on average: candidates wait
    /// in a ring in rising order (a monotonic queue).
    class SlidingMinimum {
    public:
        explicit SlidingMinimum(std::uint32_t windowLength);
        float push(float value) noexcept;

    private:
        struct Candidate {
            float value;
            std::uint64_t time;
        };
        std::vector<Candidate> ring_;
        std::uint64_t first_ = 0;  // ring indices count up; modulo the size they name a place
        std::uint64_t end_ = 0;
        std::uint64_t now_ = 0;
        std::uint64_t windowLength_;
    };

    [[nodiscard]] float nextGain(float peak) noexcept;
    [[nodiscard]] float smooth(float gain) noexcept;

    std::uint32_t lookahead_;
    float releasePerFrame_;
    SlidingMinimum hold_;
    float releasedGain_ = 1.0F;
    std::vector<float> smoothing_;  // the last lookahead_ + 1 gains, a ring
    std::size_t smoothingPlace_ = 0;
    double smoothingSum_;
    std::uint32_t reducedCount_ = 0;         // how many of them are below 1
    std::vector<std::vector<float>> delay_;  // a ring per channel, lookahead_ frames
    std::size_t delayPlace_ = 0;
};

}  // namespace tonvale
