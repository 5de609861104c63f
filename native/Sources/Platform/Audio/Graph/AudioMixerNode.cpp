// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/AudioMixerNode.h"

#include <algorithm>

namespace tonvale {

void AudioMixerNode::prepare(const RenderSettings& settings)
{
    AudioNode::prepare(settings);
    limiter_.emplace(settings.format, settings.maximumFrameCount);
    maximumFrameCount_ = settings.maximumFrameCount;
    framesToRunAhead_ = limiter_->latencyFrames();
}

std::uint32_t AudioMixerNode::reset(std::uint32_t prerollFrames)
{
    if (!limiter_) {
        return AudioNode::reset(prerollFrames);
    }
    limiter_->reset();
    const std::uint32_t before = AudioNode::reset(prerollFrames + limiter_->prerollFrames());
    const std::uint32_t wanted = std::min(prerollFrames, before);
    framesToRunAhead_ = limiter_->latencyFrames() + before - wanted;
    return wanted;
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
        const std::uint32_t frames =
            std::min({framesToRunAhead_, maximumFrameCount_, scratch.frameCapacity()});
        renderInput(scratch, frames);
        limiter_->process(scratch);
        framesToRunAhead_ -= frames;
    }
}

}  // namespace tonvale
