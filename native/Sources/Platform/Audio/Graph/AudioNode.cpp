// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/AudioNode.h"

#include "Platform/Audio/Graph/AudioNodeHost.h"

#include <utility>

namespace tonvale {

AudioNode::~AudioNode()
{
    leaveHost();
}

void AudioNode::prepare(const RenderSettings& settings)
{
    if (input_ != nullptr) {
        input_->prepare(settings);
    }
}

std::uint32_t AudioNode::reset(std::uint32_t prerollFrames)
{
    return input_ != nullptr ? input_->reset(prerollFrames) : 0;
}

void AudioNode::leaveHost() noexcept
{
    if (host_ != nullptr) {
        std::exchange(host_, nullptr)->leave(*this);
    }
}

void AudioNode::renderInput(AudioPCMBuffer& buffer, std::uint32_t frameCount)
{
    if (input_ != nullptr) {
        input_->render(buffer, frameCount);
        return;
    }
    buffer.setFrameLength(frameCount);
    buffer.silence(0, frameCount);
}

}  // namespace tonvale
