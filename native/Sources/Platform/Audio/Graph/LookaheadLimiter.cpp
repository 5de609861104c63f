// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/LookaheadLimiter.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <utility>

namespace tonvale {

namespace {

constexpr double lookaheadSeconds = 0.005;  // short enough to hide, long enough not to distort bass
constexpr double releaseSeconds = 0.3;      // from silence to full level: 3 dB take 0.09 s
constexpr float ceiling =
    32766.0F / 32768.0F;  // a 16-bit step under the largest sample: meters call that one clipped

/// Whether a sample exceeds full scale (or is none at all). Magnitudes are compared as whole
/// numbers, which have the same order: the compiler then looks at several at once.
bool exceedsFullScale(std::span<const float> samples) noexcept
{
    constexpr std::int32_t magnitudeBits = 0x7FFFFFFF;
    std::int32_t peak = 0;
    for (const float sample : samples) {
        peak = std::max(peak, std::bit_cast<std::int32_t>(sample) & magnitudeBits);
    }
    return peak > std::bit_cast<std::int32_t>(1.0F);
}

bool exceedsFullScale(const AudioPCMBuffer& buffer) noexcept
{
    for (std::uint32_t channel = 0; channel < buffer.format().channelCount; ++channel) {
        if (exceedsFullScale(buffer.channel(channel).first(buffer.frameLength()))) {
            return true;
        }
    }
    return false;
}

/// What is no number has no level to limit; it counts as silence.
void silenceWhatIsNotFinite(AudioPCMBuffer& buffer) noexcept
{
    for (std::uint32_t channel = 0; channel < buffer.format().channelCount; ++channel) {
        std::ranges::replace_if(
            buffer.channel(channel).first(buffer.frameLength()),
            [](float sample) { return !std::isfinite(sample); }, 0.0F);
    }
}

float gainFor(float peak) noexcept
{
    return peak > 1.0F ? ceiling / peak : 1.0F;
}

}  // namespace

LookaheadLimiter::LookaheadLimiter(const AudioFormat& format, std::uint32_t maximumFrameCount)
    : lookahead_(static_cast<std::uint32_t>(std::lround(lookaheadSeconds * format.sampleRate)))
    , releasePerFrame_(static_cast<float>(1.0 / (releaseSeconds * format.sampleRate)))
    , hold_(lookahead_ + 1)
    , smoothing_(lookahead_ + 1, 1.0F)
    , smoothingSum_(lookahead_ + 1)
    , pasts_(format.channelCount, std::vector<float>(lookahead_, 0.0F))
    , delayed_(lookahead_ + maximumFrameCount)
    , gains_(maximumFrameCount)
{
}

std::uint32_t LookaheadLimiter::prerollFrames() const noexcept
{
    constexpr float reduction = 0.3F;  // a little over 3 dB
    return 2 * lookahead_ + static_cast<std::uint32_t>(reduction / releasePerFrame_);
}

void LookaheadLimiter::reset() noexcept
{
    hold_.reset();
    releasedGain_ = 1.0F;
    std::ranges::fill(smoothing_, 1.0F);
    smoothingPlace_ = 0;
    smoothingSum_ = static_cast<double>(smoothing_.size());
    reducedCount_ = 0;
    for (std::vector<float>& past : pasts_) {
        std::ranges::fill(past, 0.0F);
    }
}

void LookaheadLimiter::process(AudioPCMBuffer& buffer) noexcept
{
    const bool isUntouched = isAtRest() && !exceedsFullScale(buffer);
    if (isUntouched) {
        hold_.pass(buffer.frameLength());
    } else {
        silenceWhatIsNotFinite(buffer);
        computeGains(buffer);
    }
    for (std::uint32_t channel = 0; channel < buffer.format().channelCount; ++channel) {
        const auto samples = buffer.channel(channel).first(buffer.frameLength());
        const auto delayed = delay(pasts_[channel], samples);
        if (isUntouched) {
            std::ranges::copy(delayed, samples.begin());
        } else {
            std::ranges::transform(delayed, gains_, samples.begin(), std::multiplies<>());
        }
    }
}

bool LookaheadLimiter::isAtRest() const noexcept
{
    return reducedCount_ == 0 && hold_.isAtRest();
}

void LookaheadLimiter::computeGains(const AudioPCMBuffer& buffer) noexcept
{
    std::ranges::fill(gains_, 0.0F);
    for (std::uint32_t channel = 0; channel < buffer.format().channelCount; ++channel) {
        const auto samples = buffer.channel(channel);
        for (std::uint32_t frame = 0; frame < buffer.frameLength(); ++frame) {
            gains_[frame] = std::max(gains_[frame], std::abs(samples[frame]));
        }
    }
    for (std::uint32_t frame = 0; frame < buffer.frameLength(); ++frame) {
        const float held = hold_.push(gainFor(gains_[frame]));
        releasedGain_ = std::min(held, releasedGain_ + releasePerFrame_);
        gains_[frame] = smooth(releasedGain_);
    }
}

float LookaheadLimiter::smooth(float gain) noexcept
{
    const float oldest = std::exchange(smoothing_[smoothingPlace_], gain);
    smoothingPlace_ = smoothingPlace_ + 1 < smoothing_.size() ? smoothingPlace_ + 1 : 0;
    reducedCount_ += (gain < 1.0F ? 1U : 0U);
    reducedCount_ -= (oldest < 1.0F ? 1U : 0U);
    if (reducedCount_ == 0) {
        smoothingSum_ = static_cast<double>(smoothing_.size());  // no rounding error survives
        return 1.0F;
    }
    smoothingSum_ += double{gain} - double{oldest};
    return static_cast<float>(smoothingSum_ / static_cast<double>(smoothing_.size()));
}

/// Puts `samples` behind the channel's past. @return as many frames, lookahead_ older
std::span<const float> LookaheadLimiter::delay(std::vector<float>& past,
                                               std::span<const float> samples) noexcept
{
    const auto present = std::ranges::copy(past, delayed_.begin()).out;
    const auto end = std::ranges::copy(samples, present).out;
    std::copy(end - lookahead_, end, past.begin());
    return std::span(delayed_).first(samples.size());
}

}  // namespace tonvale
