// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFormat.h"
#include "Platform/Audio/AudioPCMBuffer.h"
#include "Platform/Audio/Graph/AudioMixerNode.h"
#include "Platform/Audio/Graph/AudioNode.h"
#include "Platform/Audio/Graph/AudioNodeHost.h"
#include "Platform/Audio/Graph/LivePlayback.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tonvale {

enum class AudioEngineManualRenderingMode { offline };

enum class AudioEngineManualRenderingStatus {
    success,
    insufficientDataFromInputNode,
    cannotDoInCurrentContext,
    error,
};

/// A graph of nodes that ends in a main mixer, and the driver that pulls frames out of it: a loop
/// of the caller's (manual rendering), or the desktop's sound device (real time). The nodes belong
/// to the caller and outlive the engine's last render. A node that goes while it is attached stops
/// the engine and leaves the graph.
///
/// Order of calls for manual rendering: attach and connect, enableManualRenderingMode(), start(),
/// renderOffline() again and again, stop(), disableManualRenderingMode().
///
/// In real time: attach and connect without a format, start(); then a source plays in the format of
/// its file, which may change from one to the next. The engine is left running; when the device is
/// lost, isRunning() turns false and start() opens it anew.
/// @thread one at a time; with manual rendering any one, in real time CONTROL
class AudioEngine final : private AudioNodeHost {
public:
    AudioEngine() = default;
    ~AudioEngine() override;

    [[nodiscard]] AudioMixerNode& mainMixerNode() noexcept { return mainMixer_; }

    /// Makes `node` part of the graph; a node must be attached before it is connected.
    void attach(AudioNode& node);

    /// Feeds `destination` from `source`, and from nothing else any more. Without a format the
    /// engine renders in the one that rendering was enabled with; a given format must be the same.
    void connect(AudioNode& source, AudioNode& destination,
                 const std::optional<AudioFormat>& format);

    /// Switches to rendering on demand, without a device.
    /// @error PlatformError when the format cannot be rendered or a connection has another
    void enableManualRenderingMode(AudioEngineManualRenderingMode mode, const AudioFormat& format,
                                   std::uint32_t maximumFrameCount);
    void disableManualRenderingMode() noexcept;

    /// With manual rendering: gets every node ready to render from its beginning. Without: opens
    /// the desktop's sound device and waits for it, no longer than three seconds; nothing of the
    /// graph changes if that fails.
    /// @error PlatformError in the library's words; std::system_error when no thread is to be had
    void start();
    void stop() noexcept;
    [[nodiscard]] bool isRunning() const noexcept;

    /// What the desktop's mixer shows for the sound; may be set before start().
    void setTitle(std::string_view title);
    /// How often the device ran dry between two frames since it was first started after a stop().
    [[nodiscard]] std::uint64_t underrunCount() const noexcept;

    /// The format of rendered buffers; manual rendering must be enabled.
    [[nodiscard]] const AudioFormat& manualRenderingFormat() const noexcept;
    /// How many frames were rendered since start().
    [[nodiscard]] std::int64_t manualRenderingSampleTime() const noexcept { return sampleTime_; }

    /// Renders the next `frameCount` frames into `buffer`.
    /// @return success with all of them, or cannotDoInCurrentContext while the engine stands still
    /// @error what the graph's source throws
    /// @thread WORKER
    [[nodiscard]] AudioEngineManualRenderingStatus renderOffline(std::uint32_t frameCount,
                                                                 AudioPCMBuffer& buffer);

private:
    struct ManualRendering {
        AudioFormat format;
        std::uint32_t maximumFrameCount;
    };

    void leave(AudioNode& node) noexcept override;
    void beginPlayback(const Playback& playback) override;
    void endPlayback() noexcept override;

    void startLive();
    [[nodiscard]] bool isAttached(const AudioNode& node) const noexcept;

    AudioMixerNode mainMixer_;
    std::vector<AudioNode*> attachedNodes_;
    std::map<const AudioNode*, AudioFormat> connectionFormats_;  // by destination, where given
    std::optional<ManualRendering> manualRendering_;
    std::int64_t sampleTime_ = 0;
    bool isRunning_ = false;
    std::string title_;
    std::unique_ptr<LivePlayback> live_;  // last: its thread renders the above
};

}  // namespace tonvale
