// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFormat.h"
#include "Platform/Audio/AudioPCMBuffer.h"
#include "Platform/Audio/Graph/AudioMixerNode.h"
#include "Platform/Audio/Graph/AudioNode.h"
#include "Platform/Audio/Output/AudioOutput.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace tonvale {

enum class AudioEngineManualRenderingMode { offline };

enum class AudioEngineManualRenderingStatus {
    success,
    insufficientDataFromInputNode,
    cannotDoInCurrentContext,
    error,
};

/// A graph of nodes that ends in a main mixer, and the driver that pulls frames out of it.
/// The nodes belong to the caller and outlive the engine's last render.
///
/// Order of calls for manual rendering: attach and connect, enableManualRenderingMode(), start(),
/// renderOffline() again and again, stop(), disableManualRenderingMode().
/// @thread one at a time
class AudioEngine {
public:
    [[nodiscard]] AudioMixerNode& mainMixerNode() noexcept { return mainMixer_; }

    /// Makes `node` part of the graph; a node must be attached before it is connected.
    void attach(AudioNode& node);

    /// Feeds `destination` from `source`. Without a format the engine renders in the one that
    /// rendering was enabled with; a given format must be the same.
    void connect(AudioNode& source, AudioNode& destination,
                 const std::optional<AudioFormat>& format);

    /// Switches to rendering on demand, without a device.
    /// @error PlatformError when the format cannot be rendered or a connection has another
    void enableManualRenderingMode(AudioEngineManualRenderingMode mode, const AudioFormat& format,
                                   std::uint32_t maximumFrameCount);
    void disableManualRenderingMode() noexcept;

    /// With manual rendering: gets every node ready to render from its beginning. Without: opens
    /// the desktop's sound device.
    /// @error PlatformError
    void start();
    void stop() noexcept;
    [[nodiscard]] bool isRunning() const noexcept;

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

    struct Silence final : AudioOutputSource {
        [[nodiscard]] std::uint32_t read(std::span<float> /*samples*/) noexcept override
        {
            return 0;
        }
    };

    void startOutput();
    [[nodiscard]] bool isAttached(const AudioNode& node) const noexcept;

    AudioMixerNode mainMixer_;
    std::vector<AudioNode*> attachedNodes_;
    std::vector<AudioFormat> connectionFormats_;
    std::optional<ManualRendering> manualRendering_;
    std::int64_t sampleTime_ = 0;
    bool isRunning_ = false;
    Silence silence_;
    std::unique_ptr<AudioOutput> output_;
};

}  // namespace tonvale
