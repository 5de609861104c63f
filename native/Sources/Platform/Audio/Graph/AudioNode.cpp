// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/AudioNode.h"

namespace tonvale {

void AudioNode::prepare(const RenderSettings& settings)
{
    if (input_ != nullptr) {
        input_->prepare(settings);
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
