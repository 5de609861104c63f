// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Audio/AudioPreviewEngine.h"

#include "Platform/Audio/AudioFile.h"
#include "Platform/Foundation/FileName.h"
#include "Tonvale/Audio/PlaybackSegment.h"

#include <chrono>

namespace tonvale {

AudioPreviewEngine::AudioPreviewEngine()
{
    engine_.attach(player_);
    engine_.attach(pitchUnit_);
    engine_.connect(player_, pitchUnit_, std::nullopt);
    engine_.connect(pitchUnit_, engine_.mainMixerNode(), std::nullopt);
}

AudioPreviewEngine::~AudioPreviewEngine()
{
    engine_.stop();  // the nodes go before it, and nothing may render them then
}

void AudioPreviewEngine::load(const std::filesystem::path& url)
{
    audioFile_ = std::make_shared<AudioFile>(AudioFile::forReading(url));
    engine_.setTitle(FileName::lastPathComponent(url).string());
    playbackStartDate_.reset();
    playbackStartTime_ = 0;
}

void AudioPreviewEngine::play(int pitchCents, double startTime)
{
    if (!audioFile_) {
        return;
    }
    setPitch(pitchCents);
    pitchUnit_.setRate(1.0F);
    if (!engine_.isRunning()) {
        engine_.start();
    }
    player_.stop();
    const PlaybackSegment segment =
        playbackSegment(startTime, audioFile_->length(), audioFile_->processingFormat().sampleRate);
    player_.scheduleSegment(audioFile_, segment.startingFrame, segment.frameCount);
    playbackStartTime_ = segment.startTime;
    playbackStartDate_ = Clock::now();
    player_.play();
}

void AudioPreviewEngine::stop()
{
    player_.stop();
    playbackStartTime_ = currentTime();
    playbackStartDate_.reset();
}

void AudioPreviewEngine::setPitch(int cents)
{
    pitchUnit_.setPitch(static_cast<float>(cents));
}

double AudioPreviewEngine::currentTime() const
{
    if (!playbackStartDate_) {
        return playbackStartTime_;
    }
    const std::chrono::duration<double> elapsed = Clock::now() - *playbackStartDate_;
    const double time = playbackStartTime_ + elapsed.count();
    return duration() < time ? duration() : time;
}

double AudioPreviewEngine::duration() const
{
    if (!audioFile_) {
        return 0;
    }
    return static_cast<double>(audioFile_->length()) / audioFile_->processingFormat().sampleRate;
}

}  // namespace tonvale
