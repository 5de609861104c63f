// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/DeviceConverter.h"

namespace tonvale {

DeviceConverter::DeviceConverter(const AudioFormat& source, double deviceRate,
                                 std::uint32_t maximumFrameCount)
    : mix_(source)
    , sides_{std::vector<float>(maximumFrameCount), std::vector<float>(maximumFrameCount)}
{
    if (source.sampleRate == deviceRate) {
        interleaved_.resize(StereoMix::sides * std::size_t{maximumFrameCount});
    } else {
        rate_.emplace(source.sampleRate, deviceRate, maximumFrameCount);
    }
}

std::uint32_t DeviceConverter::maximumOutput() const noexcept
{
    return rate_ ? rate_->maximumOutput() : static_cast<std::uint32_t>(sides_[0].size());
}

void DeviceConverter::reset()
{
    if (rate_) {
        rate_->reset();
    }
}

std::span<const float> DeviceConverter::convert(const AudioPCMBuffer& buffer)
{
    const std::uint32_t frames = buffer.frameLength();
    mix_.mix(buffer, sides_[0], sides_[1]);
    return rate_ ? rate_->convert(
               {std::span(sides_[0]).first(frames), std::span(sides_[1]).first(frames)})
                 : interleave(frames);
}

std::span<const float> DeviceConverter::finish()
{
    return rate_ ? rate_->finish() : std::span<const float>();
}

std::span<const float> DeviceConverter::interleave(std::uint32_t frames) noexcept
{
    for (std::size_t frame = 0; frame < frames; ++frame) {
        interleaved_[2 * frame] = sides_[0][frame];
        interleaved_[2 * frame + 1] = sides_[1][frame];
    }
    return std::span(interleaved_).first(StereoMix::sides * std::size_t{frames});
}

}  // namespace tonvale
