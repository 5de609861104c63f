// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/AudioEngine.h"

#include "Platform/Foundation/PlatformError.h"
#include "Platform/Foundation/Precondition.h"

#include <algorithm>

namespace tonvale {

AudioEngine::~AudioEngine()
{
    stop();
    for (AudioNode* node : attachedNodes_) {
        node->setHost(nullptr);
    }
}

void AudioEngine::attach(AudioNode& node)
{
    precondition(!isAttached(node));
    attachedNodes_.push_back(&node);
    node.setHost(this);
}

void AudioEngine::connect(AudioNode& source, AudioNode& destination,
                          const std::optional<AudioFormat>& format)
{
    precondition(isAttached(source) && (isAttached(destination) || &destination == &mainMixer_));
    destination.setInput(&source);
    connectionFormats_.erase(&destination);
    if (format) {
        connectionFormats_.emplace(&destination, *format);
    }
}

void AudioEngine::enableManualRenderingMode(AudioEngineManualRenderingMode /*mode*/,
                                            const AudioFormat& format,
                                            std::uint32_t maximumFrameCount)
{
    const auto agrees = [&format](const auto& connection) { return connection.second == format; };
    if (AudioPCMBuffer::create(format, 1) == nullptr || maximumFrameCount == 0
        || !std::ranges::all_of(connectionFormats_, agrees)) {
        throw PlatformError("The audio format cannot be rendered.");
    }
    manualRendering_ = ManualRendering{format, maximumFrameCount};
}

void AudioEngine::disableManualRenderingMode() noexcept
{
    stop();
    manualRendering_.reset();
}

void AudioEngine::start()
{
    if (!manualRendering_) {
        startLive();
        return;
    }
    mainMixer_.prepare({.format = manualRendering_->format,
                        .maximumFrameCount = manualRendering_->maximumFrameCount,
                        .isOffline = true});
    sampleTime_ = 0;
    isRunning_ = true;
}

void AudioEngine::startLive()
{
    if (!live_) {
        live_ = std::make_unique<LivePlayback>(mainMixer_);
        live_->setTitle(title_);
    }
    live_->start();
}

void AudioEngine::stop() noexcept
{
    live_.reset();
    isRunning_ = false;
}

bool AudioEngine::isRunning() const noexcept
{
    return live_ ? live_->isRunning() : isRunning_;
}

void AudioEngine::setTitle(std::string_view title)
{
    title_ = title;
    if (live_) {
        live_->setTitle(title_);
    }
}

std::uint64_t AudioEngine::underrunCount() const noexcept
{
    return live_ ? live_->underrunCount() : 0;
}

void AudioEngine::leave(AudioNode& node) noexcept
{
    stop();
    std::erase(attachedNodes_, &node);
    connectionFormats_.erase(&node);
    const auto forget = [this, &node](AudioNode& other) {
        if (other.input() == &node) {
            other.setInput(nullptr);
            connectionFormats_.erase(&other);
        }
    };
    forget(mainMixer_);
    for (AudioNode* other : attachedNodes_) {
        forget(*other);
    }
}

void AudioEngine::beginPlayback(const Playback& playback)
{
    if (live_) {
        live_->begin(playback);
    }
}

void AudioEngine::endPlayback() noexcept
{
    if (live_) {
        live_->end();
    }
}

const AudioFormat& AudioEngine::manualRenderingFormat() const noexcept
{
    precondition(manualRendering_.has_value());
    return manualRendering_->format;
}

AudioEngineManualRenderingStatus AudioEngine::renderOffline(std::uint32_t frameCount,
                                                            AudioPCMBuffer& buffer)
{
    if (!isRunning_) {
        return AudioEngineManualRenderingStatus::cannotDoInCurrentContext;
    }
    precondition(frameCount > 0 && frameCount <= manualRendering_->maximumFrameCount
                 && frameCount <= buffer.frameCapacity()
                 && buffer.format() == manualRendering_->format);
    mainMixer_.render(buffer, frameCount);
    sampleTime_ += frameCount;
    return AudioEngineManualRenderingStatus::success;
}

bool AudioEngine::isAttached(const AudioNode& node) const noexcept
{
    return std::ranges::find(attachedNodes_, &node) != attachedNodes_.end();
}

}  // namespace tonvale
