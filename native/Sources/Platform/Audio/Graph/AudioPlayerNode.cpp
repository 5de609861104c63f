// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/AudioPlayerNode.h"

#include "Platform/Audio/Graph/AudioNodeHost.h"
#include "Platform/Foundation/Precondition.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace tonvale {

AudioPlayerNode::~AudioPlayerNode()
{
    leaveHost();
}

void AudioPlayerNode::scheduleSegment(std::shared_ptr<AudioFile> file, std::int64_t startingFrame,
                                      std::uint32_t frameCount)
{
    {
        const std::scoped_lock lock(mutex_);
        precondition(!scheduled_ && file != nullptr && startingFrame >= 0
                     && startingFrame + frameCount <= file->length());
        scheduled_ = Segment{std::move(file), startingFrame, startingFrame + frameCount};
        ++changeCount_;
    }
    tellHost();
}

void AudioPlayerNode::play()
{
    {
        const std::scoped_lock lock(mutex_);
        if (isPlaying_) {
            return;
        }
        isPlaying_ = true;
        ++changeCount_;
    }
    tellHost();
}

void AudioPlayerNode::stop()
{
    std::optional<Segment> discarded;  // closes its file outside the lock
    {
        const std::scoped_lock lock(mutex_);
        isPlaying_ = false;
        scheduled_.swap(discarded);
        ++changeCount_;
    }
    if (host() != nullptr) {
        host()->endPlayback();
    }
}

/// Only CONTROL changes what is read here, so no lock is needed.
void AudioPlayerNode::tellHost()
{
    if (host() != nullptr && isPlaying_ && scheduled_) {
        host()->beginPlayback({.format = scheduled_->file->processingFormat(),
                               .frameCount = static_cast<std::uint32_t>(scheduled_->endFrame
                                                                        - scheduled_->startFrame),
                               .startsInTheMiddle = scheduled_->startFrame > 0});
    }
}

void AudioPlayerNode::prepare(const RenderSettings& settings)
{
    isLive_ = !settings.isOffline;
    AudioNode::prepare(settings);
}

std::uint32_t AudioPlayerNode::reset(std::uint32_t prerollFrames)
{
    noticeChange(true);
    if (!segment_) {
        return 0;
    }
    const auto before =
        static_cast<std::uint32_t>(std::min<std::int64_t>(prerollFrames, nextFrame_));
    nextFrame_ -= before;
    return before;
}

void AudioPlayerNode::render(AudioPCMBuffer& buffer, std::uint32_t frameCount)
{
    noticeChange(false);
    const std::uint32_t played = segment_ ? renderSegment(buffer, frameCount) : 0;
    buffer.setFrameLength(frameCount);
    buffer.silence(played, frameCount - played);
}

/// @param isAnew  whether to begin from the beginning even if nothing has changed
void AudioPlayerNode::noticeChange(bool isAnew)
{
    std::optional<Segment> playedBefore;  // closes its file outside the lock
    const std::scoped_lock lock(mutex_);
    if (noticedCount_ == changeCount_ && !isAnew) {
        return;
    }
    noticedCount_ = changeCount_;
    playedBefore.swap(segment_);
    if (isPlaying_ && scheduled_) {
        segment_ = scheduled_;
        nextFrame_ = segment_->startFrame;
    }
}

std::uint32_t AudioPlayerNode::renderSegment(AudioPCMBuffer& buffer, std::uint32_t frameCount)
{
    const auto wanted = static_cast<std::uint32_t>(
        std::min<std::int64_t>(frameCount, segment_->endFrame - nextFrame_));
    if (wanted == 0) {
        return 0;
    }
    buffer.setFrameLength(0);
    readSegment(buffer, wanted);
    nextFrame_ += buffer.frameLength();
    return buffer.frameLength();
}

void AudioPlayerNode::readSegment(AudioPCMBuffer& buffer, std::uint32_t frameCount)
{
    try {
        segment_->file->read(nextFrame_, buffer, frameCount);
    } catch (const std::exception&) {
        if (!isLive_) {
            throw;
        }
        buffer.setFrameLength(0);
        nextFrame_ = segment_->endFrame;
    }
}

}  // namespace tonvale
