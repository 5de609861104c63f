// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/AudioUnitTimePitch.h"

#include "Platform/Audio/TimePitch/PitchShifter.h"
#include "Platform/Foundation/Precondition.h"

#include <algorithm>

namespace tonvale {

namespace {

/// From here on the engine's second thread pays for the waiting at either end of a chunk.
constexpr std::uint32_t offlineChunkFrames = 16384;

}  // namespace

AudioUnitTimePitch::AudioUnitTimePitch() = default;

AudioUnitTimePitch::~AudioUnitTimePitch()
{
    leaveHost();
}

void AudioUnitTimePitch::setRate(float rate) noexcept
{
    precondition(rate == 1.0F);
}

std::uint32_t AudioUnitTimePitch::latencyFrames() const noexcept
{
    return shifter_ ? static_cast<std::uint32_t>(shifter_->latencyFrames()) : 0;
}

void AudioUnitTimePitch::prepare(const RenderSettings& settings)
{
    readAhead_.reset();
    settings_ = settings;
    if (settings.isOffline) {
        settings_.maximumFrameCount = offlineChunkFrames;
    }
    AudioNode::prepare(settings_);
    const AudioFormat& format = settings_.format;
    shifter_ = std::make_unique<timepitch::PitchShifter>(
        timepitch::PitchShifter::Configuration{.sampleRate = format.sampleRate,
                                               .channelCount = format.channelCount,
                                               .workerThreads = settings_.isOffline ? 1U : 0U});
    framesToDrop_ = latencyFrames();
    unshifted_ = AudioPCMBuffer::create(format, settings_.maximumFrameCount);
    shifted_ = AudioPCMBuffer::create(format, settings_.maximumFrameCount);
    shiftedPlace_ = 0;
    inputChannels_.resize(format.channelCount);
    outputChannels_.resize(format.channelCount);
}

std::uint32_t AudioUnitTimePitch::reset(std::uint32_t prerollFrames)
{
    if (!shifter_) {
        return AudioNode::reset(prerollFrames);
    }
    readAhead_.reset();
    shifter_->reset();
    shifted_->setFrameLength(0);
    shiftedPlace_ = 0;
    const std::uint32_t before =
        AudioNode::reset(prerollFrames + static_cast<std::uint32_t>(shifter_->prerollFrames()));
    const std::uint32_t wanted = std::min(prerollFrames, before);
    framesToDrop_ = latencyFrames() + before - wanted;
    return wanted;
}

void AudioUnitTimePitch::render(AudioPCMBuffer& buffer, std::uint32_t frameCount)
{
    for (std::uint32_t done = 0; done < frameCount;) {
        if (shiftedPlace_ == shifted_->frameLength()) {
            shiftChunk(nextChunkFrames(frameCount - done));
        }
        const std::uint32_t count =
            std::min(frameCount - done, shifted_->frameLength() - shiftedPlace_);
        for (std::uint32_t channel = 0; channel < outputChannels_.size(); ++channel) {
            std::ranges::copy(shifted_->channel(channel).subspan(shiftedPlace_, count),
                              buffer.channel(channel).begin() + done);
        }
        shiftedPlace_ += count;
        done += count;
    }
    buffer.setFrameLength(frameCount);
}

/// Live, no frame is shifted before it is asked for, so that a new pitch is heard at once.
std::uint32_t AudioUnitTimePitch::nextChunkFrames(std::uint32_t wanted) const noexcept
{
    const std::uint32_t most = settings_.maximumFrameCount;
    return settings_.isOffline ? most : std::min(most, std::max(wanted, framesToDrop_));
}

void AudioUnitTimePitch::shiftChunk(std::uint32_t frameCount)
{
    const AudioPCMBuffer& input = takeInput(frameCount);
    for (std::uint32_t channel = 0; channel < outputChannels_.size(); ++channel) {
        inputChannels_[channel] = input.channel(channel).data();
        outputChannels_[channel] = shifted_->channel(channel).data();
    }
    shifter_->setPitch(pitch());
    shifter_->process(inputChannels_, outputChannels_, frameCount);
    shifted_->setFrameLength(frameCount);
    shiftedPlace_ = std::min(framesToDrop_, frameCount);
    framesToDrop_ -= shiftedPlace_;
}

const AudioPCMBuffer& AudioUnitTimePitch::takeInput(std::uint32_t frameCount)
{
    if (!settings_.isOffline || input() == nullptr) {
        renderInput(*unshifted_, frameCount);
        return *unshifted_;
    }
    if (!readAhead_) {
        // Not before the first render: until then the player may still be told what to play.
        readAhead_.emplace(*input(), settings_.format, settings_.maximumFrameCount);
    }
    return readAhead_->next();
}

}  // namespace tonvale
