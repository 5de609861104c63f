// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/LookaheadLimiter.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tonvale {

namespace {

constexpr double lookaheadSeconds = 0.005;  // short enough to hide, long enough not to distort bass
constexpr double releaseSeconds = 0.3;      // from silence to full level: 3 dB take 0.09 s
constexpr float ceiling =
    32766.0F / 32768.0F;  // a 16-bit step under the largest sample: meters call that one clipped

float peakOf(const AudioPCMBuffer& buffer, std::uint32_t frame) noexcept
{
    float peak = 0.0F;
    for (std::uint32_t channel = 0; channel < buffer.format().channelCount; ++channel) {
        peak = std::max(peak, std::abs(buffer.channel(channel)[frame]));
    }
    return peak;
}

float gainFor(float peak) noexcept
{
    return peak > 1.0F ? ceiling / peak : 1.0F;
}

}  // namespace

LookaheadLimiter::SlidingMinimum::SlidingMinimum(std::uint32_t windowLength)
    : ring_(windowLength)
    , windowLength_(windowLength)
{
}

float LookaheadLimiter::SlidingMinimum::push(float value) noexcept
{
    while (end_ != first_ && ring_[(end_ - 1) % ring_.size()].value >= value) {
        --end_;
    }
    if (end_ != first_ && ring_[first_ % ring_.size()].time + windowLength_ <= now_) {
        ++first_;
    }
    ring_[end_ % ring_.size()] = {value, now_};
    ++end_;
    ++now_;
    return ring_[first_ % ring_.size()].value;
}

LookaheadLimiter::LookaheadLimiter(const AudioFormat& format)
    : lookahead_(static_cast<std::uint32_t>(std::lround(lookaheadSeconds * format.sampleRate)))
    , releasePerFrame_(static_cast<float>(1.0 / (releaseSeconds * format.sampleRate)))
    , hold_(lookahead_ + 1)
    , smoothing_(lookahead_ + 1, 1.0F)
    , smoothingSum_(lookahead_ + 1)
    , delay_(format.channelCount, std::vector<float>(lookahead_, 0.0F))
{
}

void LookaheadLimiter::process(AudioPCMBuffer& buffer) noexcept
{
    for (std::uint32_t frame = 0; frame < buffer.frameLength(); ++frame) {
        const float gain = nextGain(peakOf(buffer, frame));
        for (std::uint32_t channel = 0; channel < buffer.format().channelCount; ++channel) {
            float& sample = buffer.channel(channel)[frame];
            sample = std::exchange(delay_[channel][delayPlace_], sample) * gain;
        }
        delayPlace_ = (delayPlace_ + 1) % lookahead_;
    }
}

float LookaheadLimiter::nextGain(float peak) noexcept
{
    releasedGain_ = std::min(hold_.push(gainFor(peak)), releasedGain_ + releasePerFrame_);
    return smooth(releasedGain_);
}

float LookaheadLimiter::smooth(float gain) noexcept
{
    const float oldest = std::exchange(smoothing_[smoothingPlace_], gain);
    smoothingPlace_ = (smoothingPlace_ + 1) % smoothing_.size();
    reducedCount_ += (gain < 1.0F ? 1U : 0U);
    reducedCount_ -= (oldest < 1.0F ? 1U : 0U);
    if (reducedCount_ == 0) {
        smoothingSum_ = static_cast<double>(smoothing_.size());  // no rounding error survives
        return 1.0F;
    }
    smoothingSum_ += double{gain} - double{oldest};
    return static_cast<float>(smoothingSum_ / static_cast<double>(smoothing_.size()));
}

}  // namespace tonvale
