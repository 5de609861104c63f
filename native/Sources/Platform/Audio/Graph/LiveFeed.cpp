// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/LiveFeed.h"

#include <algorithm>
#include <cmath>

namespace tonvale {

namespace {

/// With one block of LiveRenderer beside it no more than 15 ms lie ahead of the device: what is
/// rendered too early hears of a new pitch too late.
constexpr double ringSeconds = 0.012;

}  // namespace

void LiveFeed::prepare(const AudioFormat& deviceFormat)
{
    close();
    channelCount_ = deviceFormat.channelCount;
    const auto frames = static_cast<std::size_t>(std::ceil(ringSeconds * deviceFormat.sampleRate));
    ring_.emplace(std::max<std::size_t>(frames, 1) * channelCount_);
}

std::uint32_t LiveFeed::read(std::span<float> samples) noexcept
{
    if (!isOpen_.load(std::memory_order_acquire)) {
        return 0;
    }
    const std::size_t taken = ring_->read(samples);
    if (taken < samples.size()) {
        isHungry_.store(true);
    }
    if (taken > 0 || !isComplete_.load(std::memory_order_relaxed)) {
        worker_.call();
    }
    return static_cast<std::uint32_t>(taken / channelCount_);
}

std::size_t LiveFeed::write(std::span<const float> samples) noexcept
{
    const std::size_t fitting = std::min(samples.size(), ring_->room());
    ring_->write(samples.first(fitting));
    return fitting;
}

void LiveFeed::open() noexcept
{
    isComplete_.store(false, std::memory_order_relaxed);
    isHungry_.store(false);
    isOpen_.store(true, std::memory_order_release);
}

}  // namespace tonvale
