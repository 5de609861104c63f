// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/AudioPCMBuffer.h"

#include "Platform/Foundation/Precondition.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace tonvale {

namespace {

constexpr std::uint32_t maximumChannelCount = 64;

bool isUsable(const AudioFormat& format)
{
    return format.channelCount > 0 && format.channelCount <= maximumChannelCount
           && std::isfinite(format.sampleRate) && format.sampleRate > 0;
}

}  // namespace

std::unique_ptr<AudioPCMBuffer> AudioPCMBuffer::create(const AudioFormat& format,
                                                       std::uint32_t frameCapacity)
{
    if (!isUsable(format) || frameCapacity == 0) {
        return nullptr;
    }
    try {
        return std::unique_ptr<AudioPCMBuffer>(new AudioPCMBuffer(format, frameCapacity));
    } catch (const std::bad_alloc&) {
        return nullptr;  // the caller's own error says more than "out of memory" would
    }
}

AudioPCMBuffer::AudioPCMBuffer(const AudioFormat& format, std::uint32_t frameCapacity)
    : format_(format)
    , frameCapacity_(frameCapacity)
    , samples_(std::size_t{format.channelCount} * frameCapacity)
{
}

void AudioPCMBuffer::setFrameLength(std::uint32_t frames) noexcept
{
    precondition(frames <= frameCapacity_);
    frameLength_ = frames;
}

std::span<float> AudioPCMBuffer::channel(std::uint32_t index) noexcept
{
    precondition(index < format_.channelCount);
    return {samples_.data() + std::size_t{index} * frameCapacity_, frameCapacity_};
}

std::span<const float> AudioPCMBuffer::channel(std::uint32_t index) const noexcept
{
    precondition(index < format_.channelCount);
    return {samples_.data() + std::size_t{index} * frameCapacity_, frameCapacity_};
}

void AudioPCMBuffer::silence(std::uint32_t first, std::uint32_t count) noexcept
{
    for (std::uint32_t index = 0; index < format_.channelCount; ++index) {
        std::ranges::fill(channel(index).subspan(first, count), 0.0F);
    }
}

}  // namespace tonvale
