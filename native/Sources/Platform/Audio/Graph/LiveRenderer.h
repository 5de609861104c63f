// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFormat.h"
#include "Platform/Audio/AudioPCMBuffer.h"
#include "Platform/Audio/Graph/AudioNode.h"
#include "Platform/Audio/Graph/AudioNodeHost.h"
#include "Platform/Audio/Graph/DeviceConverter.h"
#include "Platform/Audio/Graph/FadeIn.h"
#include "Platform/Audio/Graph/LiveFeed.h"
#include "Platform/Audio/Graph/WakeUp.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <thread>

namespace tonvale {

/// Renders a graph on a thread of its own into a feed, just far enough ahead of the device.
///
/// What is played between two calls of CONTROL is a *take*. The thread never makes CONTROL wait for
/// decoding or shifting: it may still be at work on an old take when the next has begun, but
/// what it then has to say is not heard.
class LiveRenderer {
public:
    /// Starts the thread; it sleeps. @param framesReady  called on it when the device found too
    /// little before and there is more now
    /// @error std::system_error when there is no thread to be had
    LiveRenderer(AudioNode& graph, LiveFeed& feed, WakeUp& wakeUp,
                 std::function<void()> framesReady);
    /// Waits for the block being rendered.
    ~LiveRenderer();
    LiveRenderer(const LiveRenderer&) = delete;
    LiveRenderer& operator=(const LiveRenderer&) = delete;

    /// Renders from the beginning of what the graph's source has scheduled. abandon() and
    /// feed.clear() come first.
    /// @thread CONTROL
    void begin(const Playback& playback, double deviceRate);

    /// Closes the feed; nothing is written to it until begin(). @thread CONTROL
    void abandon() noexcept;

private:
    struct Take {
        Playback playback;
        double deviceRate;
    };

    void run();
    [[nodiscard]] bool adoptTake();
    void beginTake() noexcept;
    void prepareFor(const Take& take);
    void fill();
    void renderBlock();
    [[nodiscard]] bool publish();
    [[nodiscard]] bool announce();
    [[nodiscard]] bool isCurrent() const noexcept { return number_.load() == adopted_; }

    AudioNode& graph_;
    LiveFeed& feed_;
    WakeUp& wakeUp_;
    std::function<void()> framesReady_;

    std::mutex mutex_;                       // of these three, and of the feed while a take lasts
    std::optional<Take> take_;               // nothing: silence
    std::atomic<std::uint64_t> number_ = 0;  // of the take; changed under the lock
    bool isEnding_ = false;

    // The thread's own.
    std::uint64_t adopted_ = 0;  // the number of the take below
    std::optional<Take> current_;
    AudioFormat preparedFormat_;
    double preparedRate_ = 0;
    std::unique_ptr<AudioPCMBuffer> block_;
    std::optional<DeviceConverter> converter_;
    FadeIn fadeIn_;
    std::uint32_t framesLeft_ = 0;  // of the take, to be rendered
    bool isFinished_ = true;        // all of the take is in pending_ or given away
    bool isOpen_ = false;
    std::span<const float> pending_;  // converted, not yet in the feed

    std::thread thread_;  // last: it uses all of the above
};

}  // namespace tonvale
