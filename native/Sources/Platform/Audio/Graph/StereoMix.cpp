// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/StereoMix.h"

#include "Platform/Audio/Loudspeakers.h"

#include <algorithm>
#include <cstddef>

namespace tonvale {

namespace {

constexpr float half = 0.70710678F;  // of the power, which is 3 dB

/// Left and right gain, in the order of the mask's bits.
constexpr std::array<std::array<float, 2>, loudspeakerPositions> positionGains{{
    {1, 0},                     // front left
    {0, 1},                     // front right
    {half, half},               // front centre
    {0, 0},                     // low effects
    {half, 0},                  // rear left
    {0, half},                  // rear right
    {half, 0},                  // front left of centre
    {0, half},                  // front right of centre
    {half * half, half* half},  // rear centre
    {half, 0},                  // side left
    {0, half},                  // side right
    {half * half, half* half},  // top centre
    {half, 0},                  // top front left
    {half * half, half* half},  // top front centre
    {0, half},                  // top front right
    {half, 0},                  // top rear left
    {half * half, half* half},  // top rear centre
    {0, half},                  // top rear right
}};

}  // namespace

StereoMix::StereoMix(const AudioFormat& format)
{
    constexpr Gains both{1, 1};
    if (format.channelCount == sides) {
        gains_ = {{1, 0}, {0, 1}};
        return;
    }
    const std::uint32_t mask =
        format.channelCount == 1 ? 0 : loudspeakersFor(format.channelCount, format.channelMask);
    for (std::uint32_t bit = 0; bit < loudspeakerPositions; ++bit) {
        if ((mask >> bit & 1U) != 0) {
            gains_.push_back(positionGains[bit]);
        }
    }
    gains_.resize(format.channelCount, both);  // all of them, where nothing is known
    Gains sum{};
    for (const Gains& gains : gains_) {
        sum[0] += gains[0];
        sum[1] += gains[1];
    }
    const float most = std::max({sum[0], sum[1], 1.0F});
    for (Gains& gains : gains_) {
        gains = {gains[0] / most, gains[1] / most};
    }
}

void StereoMix::mix(const AudioPCMBuffer& buffer, std::span<float> left,
                    std::span<float> right) const noexcept
{
    const std::size_t frames = buffer.frameLength();
    const std::array<std::span<float>, sides> out{left.first(frames), right.first(frames)};
    for (std::size_t side = 0; side < sides; ++side) {
        std::ranges::fill(out[side], 0.0F);
        for (std::uint32_t channel = 0; channel < gains_.size(); ++channel) {
            const float gain = gains_[channel][side];
            if (gain == 0) {
                continue;
            }
            const auto in = buffer.channel(channel);
            for (std::size_t frame = 0; frame < frames; ++frame) {
                out[side][frame] += gain * in[frame];
            }
        }
    }
}

}  // namespace tonvale
