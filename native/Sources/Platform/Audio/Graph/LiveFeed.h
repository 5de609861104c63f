// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFormat.h"
#include "Platform/Audio/Graph/SampleRing.h"
#include "Platform/Audio/Graph/WakeUp.h"
#include "Platform/Audio/Output/AudioOutput.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <span>

namespace tonvale {

/// Where rendered frames wait for the device: a short ring behind a gate. While the gate is closed
/// the device finds nothing and does not touch the ring, so that it can be emptied.
///
/// One WORKER fills, one AUDIO thread takes, one CONTROL thread closes; see each function.
class LiveFeed final : public AudioOutputSource {
public:
    /// @param worker  called whenever there is room again
    explicit LiveFeed(WakeUp& worker) noexcept : worker_(worker) {}

    /// Makes an empty ring for a device of this format, and closes the gate.
    /// @thread CONTROL, while nobody fills and the device has not read since close()
    void prepare(const AudioFormat& deviceFormat);

    [[nodiscard]] std::uint32_t read(std::span<float> samples) noexcept override;

    /// Appends what fits. @return how many samples did  @thread WORKER
    [[nodiscard]] std::size_t write(std::span<const float> samples) noexcept;
    [[nodiscard]] bool isFull() const noexcept { return ring_->room() == 0; }
    [[nodiscard]] bool isEmpty() const noexcept { return ring_->isEmpty(); }

    /// Lets the device at the ring. @thread WORKER
    void open() noexcept;
    /// Nothing more will be written: a device that finds too little need not call. @thread WORKER
    void complete() noexcept { isComplete_.store(true, std::memory_order_relaxed); }
    /// Whether the device found too little since the last call. @thread WORKER
    [[nodiscard]] bool takeHunger() noexcept { return isHungry_.exchange(false); }

    /// No read() that begins after this finds anything. @thread CONTROL
    void close() noexcept { isOpen_.store(false); }
    /// Forgets what was written. @thread as prepare()
    void clear() noexcept { ring_->clear(); }

private:
    WakeUp& worker_;
    std::optional<SampleRing> ring_;
    std::uint32_t channelCount_ = 1;
    std::atomic<bool> isOpen_ = false;
    std::atomic<bool> isHungry_ = false;
    std::atomic<bool> isComplete_ = false;
};

}  // namespace tonvale
