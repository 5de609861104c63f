// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFormat.h"
#include "Platform/Audio/AudioPCMBuffer.h"

#include <cstdint>

namespace tonvale {

/// How a graph is about to be rendered.
struct RenderSettings {
    AudioFormat format;
    std::uint32_t maximumFrameCount = 0;  ///< the most frames that one render() will ask for
    bool isOffline = false;  ///< nobody waits for single blocks: reading far ahead and using
                             ///< further threads is welcome
};

class AudioNodeHost;

/// A stage of the pull graph: the stage behind asks it for frames, and it asks the one before it.
/// The engine owns the order of calls: prepare(), then render() any number of times; reset()
/// between renders begins anew.
class AudioNode {
public:
    AudioNode() = default;
    AudioNode(const AudioNode&) = delete;
    AudioNode& operator=(const AudioNode&) = delete;
    virtual ~AudioNode();

    /// Who is told what this node does; none for a node that stands alone. @thread CONTROL
    void setHost(AudioNodeHost* host) noexcept { host_ = host; }

    /// Where render() takes its frames from; a node without input is a source.
    /// @thread CONTROL, while nothing renders
    void setInput(AudioNode* input) noexcept { input_ = input; }
    [[nodiscard]] AudioNode* input() const noexcept { return input_; }

    /// Gets ready to render from the beginning on, and its input too. What render() needs is
    /// allocated here.
    /// @thread CONTROL, while nothing renders
    virtual void prepare(const RenderSettings& settings);

    /// Gets ready to render from the beginning on once more, in the same way; the input too. A node
    /// whose sound depends on what lies before wants to hear that first: frames from before the
    /// beginning.
    /// @param prerollFrames  how many of them to render first
    /// @return how many there will be: fewer where the source has no more
    /// @thread WORKER; no allocation
    virtual std::uint32_t reset(std::uint32_t prerollFrames);

    /// Fills the first `frameCount` frames of `buffer` and sets its frameLength to it.
    /// Past the end of the music this is silence, never less.
    /// @param frameCount  1 ... the maximum given to prepare()
    /// @error what the source throws when the disk fails
    /// @thread WORKER
    virtual void render(AudioPCMBuffer& buffer, std::uint32_t frameCount) = 0;

protected:
    [[nodiscard]] AudioNodeHost* host() const noexcept { return host_; }

    /// Parts with the host; when this returns, nobody renders this node. The first act of a
    /// destructor: rendering needs the whole node.
    void leaveHost() noexcept;

    /// Renders the input, or silence where there is none.
    void renderInput(AudioPCMBuffer& buffer, std::uint32_t frameCount);

private:
    AudioNode* input_ = nullptr;
    AudioNodeHost* host_ = nullptr;
};

}  // namespace tonvale
