// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/SampleRing.h"

#include "Platform/Foundation/Precondition.h"

#include <algorithm>

namespace tonvale {

static_assert(std::atomic<std::uint64_t>::is_always_lock_free);

std::size_t SampleRing::room() const noexcept
{
    const std::uint64_t written = written_.load(std::memory_order_relaxed);
    return samples_.size()
           - static_cast<std::size_t>(written - read_.load(std::memory_order_acquire));
}

void SampleRing::write(std::span<const float> samples) noexcept
{
    precondition(samples.size() <= room());
    const std::uint64_t written = written_.load(std::memory_order_relaxed);
    const auto place = static_cast<std::size_t>(written % samples_.size());
    const std::size_t beforeTheEnd = std::min(samples.size(), samples_.size() - place);
    std::ranges::copy(samples.first(beforeTheEnd), &samples_[place]);
    std::ranges::copy(samples.subspan(beforeTheEnd), samples_.begin());
    written_.store(written + samples.size(), std::memory_order_release);
}

std::size_t SampleRing::read(std::span<float> samples) noexcept
{
    const std::uint64_t read = read_.load(std::memory_order_relaxed);
    const auto ready = static_cast<std::size_t>(written_.load(std::memory_order_acquire) - read);
    const std::size_t count = std::min(samples.size(), ready);
    const auto place = static_cast<std::size_t>(read % samples_.size());
    const std::size_t beforeTheEnd = std::min(count, samples_.size() - place);
    std::copy_n(&samples_[place], beforeTheEnd, samples.begin());
    std::copy_n(samples_.begin(), count - beforeTheEnd, samples.subspan(beforeTheEnd).begin());
    read_.store(read + count, std::memory_order_release);
    return count;
}

bool SampleRing::isEmpty() const noexcept
{
    return room() == samples_.size();
}

void SampleRing::clear() noexcept
{
    read_.store(0, std::memory_order_relaxed);
    written_.store(0, std::memory_order_relaxed);
}

}  // namespace tonvale
