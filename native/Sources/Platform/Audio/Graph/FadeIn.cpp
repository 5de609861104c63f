// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/FadeIn.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tonvale {

void FadeIn::begin(double sampleRate) noexcept
{
    constexpr double seconds = 0.005;
    length_ = static_cast<std::uint32_t>(std::lround(seconds * sampleRate));
    place_ = 0;
}

void FadeIn::process(AudioPCMBuffer& buffer) noexcept
{
    const std::uint32_t frames = std::min(buffer.frameLength(), length_ - place_);
    for (std::uint32_t frame = 0; frame < frames; ++frame) {
        // A raised cosine: its corners are round, so that the swell itself is no click.
        const double turn = (place_ + frame + 0.5) / length_;
        const auto gain = static_cast<float>(0.5 - 0.5 * std::cos(std::numbers::pi * turn));
        for (std::uint32_t channel = 0; channel < buffer.format().channelCount; ++channel) {
            buffer.channel(channel)[frame] *= gain;
        }
    }
    place_ += frames;
}

}  // namespace tonvale
