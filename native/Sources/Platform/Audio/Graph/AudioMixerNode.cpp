// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/AudioMixerNode.h"

#include <algorithm>

namespace tonvale {

void AudioMixerNode::prepare(const AudioFormat& format, std::uint32_t maximumFrameCount)
{
    AudioNode::prepare(format, maximumFrameCount);
    limiter_.emplace(format, maximumFrameCount);
    framesToRunAhead_ = limiter_->latencyFrames();
}

void AudioMixerNode::render(AudioPCMBuffer& buffer, std::uint32_t frameCount)
{
    runAhead(buffer);
    renderInput(buffer, frameCount);
    limiter_->process(buffer);
}

void AudioMixerNode::runAhead(AudioPCMBuffer& scratch)
{
    while (framesToRunAhead_ > 0) {
        const std::uint32_t frames = std::min(framesToRunAhead_, scratch.frameCapacity());
        renderInput(scratch, frames);
        limiter_->process(scratch);
        framesToRunAhead_ -= frames;
    }
}

}  // namespace tonvale
