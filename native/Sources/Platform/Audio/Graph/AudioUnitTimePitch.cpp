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
    endAhead();
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
    endAhead();
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
    shifted_ =
        settings.isOffline ? nullptr : AudioPCMBuffer::create(format, settings_.maximumFrameCount);
    chunk_ = nullptr;
    inputChannels_.resize(format.channelCount);
    outputChannels_.resize(format.channelCount);
}

std::uint32_t AudioUnitTimePitch::reset(std::uint32_t prerollFrames)
{
    if (!shifter_) {
        return AudioNode::reset(prerollFrames);
    }
    endAhead();
    shifter_->reset();
    chunk_ = nullptr;
    const std::uint32_t before =
        AudioNode::reset(prerollFrames + static_cast<std::uint32_t>(shifter_->prerollFrames()));
    const std::uint32_t wanted = std::min(prerollFrames, before);
    framesToDrop_ = latencyFrames() + before - wanted;
    return wanted;
}

void AudioUnitTimePitch::endAhead() noexcept
{
    shiftAhead_.reset();  // first: it takes from the other
    readAhead_.reset();
}

void AudioUnitTimePitch::render(AudioPCMBuffer& buffer, std::uint32_t frameCount)
{
    for (std::uint32_t done = 0; done < frameCount;) {
        if (chunk_ == nullptr || chunkPlace_ == chunk_->frameLength()) {
            takeChunk(frameCount - done);
        }
        const std::uint32_t count =
            std::min(frameCount - done, chunk_->frameLength() - chunkPlace_);
        for (std::uint32_t channel = 0; channel < outputChannels_.size(); ++channel) {
            std::ranges::copy(chunk_->channel(channel).subspan(chunkPlace_, count),
                              buffer.channel(channel).begin() + done);
        }
        chunkPlace_ += count;
        done += count;
    }
    buffer.setFrameLength(frameCount);
}

/// Live, no frame is shifted before it is asked for, so that a new pitch is heard at once.
void AudioUnitTimePitch::takeChunk(std::uint32_t wanted)
{
    if (settings_.isOffline) {
        chunk_ = &shiftedAhead();
    } else {
        shiftChunk(*shifted_,
                   std::min(settings_.maximumFrameCount, std::max(wanted, framesToDrop_)));
        chunk_ = shifted_.get();
    }
    chunkPlace_ = std::min(framesToDrop_, chunk_->frameLength());
    framesToDrop_ -= chunkPlace_;
}

const AudioPCMBuffer& AudioUnitTimePitch::shiftedAhead()
{
    if (!shiftAhead_) {
        // Not before the first render: until then the player may still be told what to play.
        shiftAhead_.emplace(shifting_, settings_.format, settings_.maximumFrameCount);
    }
    return shiftAhead_->next();
}

void AudioUnitTimePitch::shiftChunk(AudioPCMBuffer& shifted, std::uint32_t frameCount)
{
    const AudioPCMBuffer& input = takeInput(frameCount);
    for (std::uint32_t channel = 0; channel < outputChannels_.size(); ++channel) {
        inputChannels_[channel] = input.channel(channel).data();
        outputChannels_[channel] = shifted.channel(channel).data();
    }
    shifter_->setPitch(pitch());
    shifter_->process(inputChannels_, outputChannels_, frameCount);
    shifted.setFrameLength(frameCount);
}

const AudioPCMBuffer& AudioUnitTimePitch::takeInput(std::uint32_t frameCount)
{
    if (!settings_.isOffline || input() == nullptr) {
        renderInput(*unshifted_, frameCount);
        return *unshifted_;
    }
    if (!readAhead_) {
        readAhead_.emplace(*input(), settings_.format, settings_.maximumFrameCount);
    }
    return readAhead_->next();
}

}  // namespace tonvale
