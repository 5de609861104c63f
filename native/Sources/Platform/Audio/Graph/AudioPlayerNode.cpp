// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/AudioPlayerNode.h"

#include "Platform/Foundation/Precondition.h"

#include <algorithm>
#include <utility>

namespace tonvale {

void AudioPlayerNode::scheduleSegment(std::shared_ptr<AudioFile> file, std::int64_t startingFrame,
                                      std::uint32_t frameCount)
{
    const std::scoped_lock lock(mutex_);
    precondition(!segment_ && file != nullptr && startingFrame >= 0
                 && startingFrame + frameCount <= file->length());
    segment_ = Segment{std::move(file), startingFrame, startingFrame + frameCount};
}

void AudioPlayerNode::play()
{
    const std::scoped_lock lock(mutex_);
    isPlaying_ = true;
}

void AudioPlayerNode::stop()
{
    const std::scoped_lock lock(mutex_);
    isPlaying_ = false;
    segment_.reset();
}

void AudioPlayerNode::render(AudioPCMBuffer& buffer, std::uint32_t frameCount)
{
    const std::scoped_lock lock(mutex_);
    const std::uint32_t played = isPlaying_ && segment_ ? renderSegment(buffer, frameCount) : 0;
    buffer.setFrameLength(frameCount);
    buffer.silence(played, frameCount - played);
}

std::uint32_t AudioPlayerNode::renderSegment(AudioPCMBuffer& buffer, std::uint32_t frameCount)
{
    const auto wanted = static_cast<std::uint32_t>(
        std::min<std::int64_t>(frameCount, segment_->endFrame - segment_->nextFrame));
    if (wanted == 0) {
        return 0;
    }
    segment_->file->read(segment_->nextFrame, buffer, wanted);
    segment_->nextFrame += buffer.frameLength();
    return buffer.frameLength();
}

}  // namespace tonvale
