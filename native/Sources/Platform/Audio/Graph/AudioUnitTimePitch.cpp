// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/AudioUnitTimePitch.h"

#include "Platform/Audio/Graph/RubberBandShifter.h"
#include "Platform/Foundation/Precondition.h"

#include <algorithm>

namespace tonvale {

AudioUnitTimePitch::AudioUnitTimePitch() = default;
AudioUnitTimePitch::~AudioUnitTimePitch() = default;

void AudioUnitTimePitch::setRate(float rate) noexcept
{
    precondition(rate == 1.0F);
}

std::uint32_t AudioUnitTimePitch::latencyFrames() const noexcept
{
    return shifter_ ? shifter_->latencyFrames() : 0;
}

void AudioUnitTimePitch::prepare(const AudioFormat& format, std::uint32_t maximumFrameCount)
{
    AudioNode::prepare(format, maximumFrameCount);
    shifter_ = std::make_unique<RubberBandShifter>(format);
    framesToRunAhead_ = shifter_->latencyFrames();
}

void AudioUnitTimePitch::render(AudioPCMBuffer& buffer, std::uint32_t frameCount)
{
    shifter_->setPitch(pitch());
    while (framesToRunAhead_ > 0) {
        const std::uint32_t frames = std::min(framesToRunAhead_, buffer.frameCapacity());
        renderShifted(buffer, frames);
        framesToRunAhead_ -= frames;
    }
    renderShifted(buffer, frameCount);
}

void AudioUnitTimePitch::renderShifted(AudioPCMBuffer& buffer, std::uint32_t frameCount)
{
    renderInput(buffer, frameCount);
    shifter_->process(buffer);
}

}  // namespace tonvale
