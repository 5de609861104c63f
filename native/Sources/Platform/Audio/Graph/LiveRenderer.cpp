// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/LiveRenderer.h"

#include <pthread.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

namespace tonvale {

namespace {

/// Small, so that a new pitch is heard soon and a block is done long before it is due.
constexpr double blockSeconds = 0.003;

std::uint32_t blockFramesAt(double sampleRate) noexcept
{
    return static_cast<std::uint32_t>(std::max(1.0, std::floor(blockSeconds * sampleRate)));
}

}  // namespace

LiveRenderer::LiveRenderer(AudioNode& graph, LiveFeed& feed, WakeUp& wakeUp,
                           std::function<void()> framesReady)
    : graph_(graph)
    , feed_(feed)
    , wakeUp_(wakeUp)
    , framesReady_(std::move(framesReady))
    , thread_([this] { run(); })
{
}

LiveRenderer::~LiveRenderer()
{
    {
        const std::scoped_lock lock(mutex_);
        isEnding_ = true;
        ++number_;
    }
    wakeUp_.call();
    thread_.join();
}

void LiveRenderer::begin(const Playback& playback, double deviceRate)
{
    {
        const std::scoped_lock lock(mutex_);
        take_ = Take{playback, deviceRate};
        ++number_;
    }
    wakeUp_.call();
}

void LiveRenderer::abandon() noexcept
{
    {
        const std::scoped_lock lock(mutex_);
        take_.reset();
        ++number_;
        feed_.close();
    }
    wakeUp_.call();
}

void LiveRenderer::run()
{
    ::pthread_setname_np(::pthread_self(), "tonvale-render");
    while (adoptTake()) {
        fill();
        wakeUp_.wait();
    }
}

/// @return false when the thread is to end
bool LiveRenderer::adoptTake()
{
    {
        const std::scoped_lock lock(mutex_);
        if (isEnding_) {
            return false;
        }
        if (isCurrent()) {
            return true;
        }
        adopted_ = number_;
        current_ = take_;
    }
    beginTake();
    return true;
}

void LiveRenderer::beginTake() noexcept
{
    pending_ = {};
    isOpen_ = false;
    isFinished_ = true;
    try {
        if (!current_) {
            (void)graph_.reset(0);  // its source lets the file go
            return;
        }
        prepareFor(*current_);
        framesLeft_ = current_->playback.frameCount;
        isFinished_ = framesLeft_ == 0;
    } catch (...) {
        // There is nobody to tell: without memory the take stays silent.
        preparedFormat_ = {};
    }
}

void LiveRenderer::prepareFor(const Take& take)
{
    const AudioFormat& format = take.playback.format;
    const std::uint32_t blockFrames = blockFramesAt(format.sampleRate);
    const bool isSame = format == preparedFormat_
                        && format.channelMask == preparedFormat_.channelMask
                        && take.deviceRate == preparedRate_;
    if (!isSame) {
        preparedFormat_ = {};  // unless all of it succeeds
        graph_.prepare({.format = format, .maximumFrameCount = blockFrames, .isOffline = false});
        block_ = AudioPCMBuffer::create(format, blockFrames);
        if (block_ == nullptr) {
            throw std::bad_alloc();
        }
        converter_.emplace(format, take.deviceRate, blockFrames);
        preparedFormat_ = format;
        preparedRate_ = take.deviceRate;
    } else {
        converter_->reset();
    }
    (void)graph_.reset(0);
    fadeIn_.begin(format.sampleRate);
    if (!take.playback.startsInTheMiddle) {
        fadeIn_.skip();
    }
}

/// Renders until the feed is full, or the take at its end or given up.
void LiveRenderer::fill()
{
    if (!current_) {
        return;
    }
    do {
        if (pending_.empty() && !isFinished_) {
            renderBlock();
        }
    } while (publish());
    if (announce()) {
        framesReady_();
    }
}

void LiveRenderer::renderBlock()
{
    try {
        if (framesLeft_ == 0) {
            isFinished_ = true;
            pending_ = converter_->finish();
            return;
        }
        const std::uint32_t frames = std::min(framesLeft_, block_->frameCapacity());
        graph_.render(*block_, frames);
        framesLeft_ -= frames;
        fadeIn_.process(*block_);
        pending_ = converter_->convert(*block_);
    } catch (...) {
        isFinished_ = true;  // the device goes on with silence
    }
}

/// Hands over what fits of pending_. @return whether another block fits, and is wanted
bool LiveRenderer::publish()
{
    const std::scoped_lock lock(mutex_);
    if (!isCurrent()) {
        return false;
    }
    pending_ = pending_.subspan(feed_.write(pending_));
    return pending_.empty() && !isFinished_ && !feed_.isFull();
}

/// Opens the feed once it has been filled. @return whether the device waits for what it holds
bool LiveRenderer::announce()
{
    const std::scoped_lock lock(mutex_);
    if (!isCurrent()) {
        return false;
    }
    const bool isNews = !isOpen_ && !feed_.isEmpty();
    if (isNews) {
        feed_.open();
        isOpen_ = true;
    }
    if (isFinished_ && pending_.empty()) {
        feed_.complete();
    }
    return (feed_.takeHunger() || isNews) && !feed_.isEmpty();
}

}  // namespace tonvale
