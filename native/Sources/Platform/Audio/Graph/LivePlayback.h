// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Graph/AudioNode.h"
#include "Platform/Audio/Graph/AudioNodeHost.h"
#include "Platform/Audio/Graph/LiveFeed.h"
#include "Platform/Audio/Graph/LiveRenderer.h"
#include "Platform/Audio/Graph/WakeUp.h"
#include "Platform/Audio/Output/AudioOutput.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <string_view>

namespace tonvale {

/// A graph sounding from the desktop's loudspeakers: the device, the feed it takes its frames
/// from, and the thread that renders them.
/// @thread CONTROL unless noted; no call waits for decoding or shifting but the destructor
class LivePlayback {
public:
    /// @param graph  its last node; outlives this object
    explicit LivePlayback(AudioNode& graph);
    ~LivePlayback() = default;
    LivePlayback(const LivePlayback&) = delete;
    LivePlayback& operator=(const LivePlayback&) = delete;

    /// Opens the device, and again when it was lost; what played then is not resumed.
    /// @error PlatformError in the sound server's words
    void start();
    [[nodiscard]] bool isRunning() const noexcept { return output_->isRunning(); }  ///< @thread ANY

    /// Plays from the beginning of what the graph's source has scheduled; without a running
    /// device nothing. end() came last.
    void begin(const Playback& playback);

    /// Falls silent: when this returns, nothing rendered before reaches the device.
    void end() noexcept;

    void setTitle(std::string_view title) { output_->setTitle(title); }
    /// @thread ANY
    [[nodiscard]] std::uint64_t underrunCount() const noexcept { return output_->underrunCount(); }

private:
    void tellDevice();

    WakeUp wakeUp_;
    LiveFeed feed_;
    std::mutex deviceMutex_;  // keeps the thread's word to the device apart from opening it
    std::unique_ptr<AudioOutput> output_;
    double deviceRate_ = 0;
    LiveRenderer renderer_;  // last: its thread uses all of the above
};

}  // namespace tonvale
