// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/LivePlayback.h"

#include "Platform/Audio/Graph/StereoMix.h"
#include "Platform/Foundation/Precondition.h"

namespace tonvale {

LivePlayback::LivePlayback(AudioNode& graph)
    : feed_(wakeUp_)
    , output_(AudioOutput::create())
    , renderer_(graph, feed_, wakeUp_, [this] { tellDevice(); })
{
}

void LivePlayback::start()
{
    renderer_.abandon();
    const std::scoped_lock lock(deviceMutex_);
    output_->start(feed_);
    const AudioFormat format = output_->format();
    precondition(format.channelCount == StereoMix::sides);
    deviceRate_ = format.sampleRate;
    feed_.prepare(format);  // the stream is new and has found the gate closed
}

void LivePlayback::begin(const Playback& playback)
{
    if (isRunning()) {
        renderer_.begin(playback, deviceRate_);
    }
}

void LivePlayback::end() noexcept
{
    renderer_.abandon();
    if (deviceRate_ == 0) {
        return;  // never opened
    }
    output_->discardQueued();
    feed_.clear();
}

void LivePlayback::tellDevice()
{
    const std::scoped_lock lock(deviceMutex_);
    output_->framesReady();
}

}  // namespace tonvale
