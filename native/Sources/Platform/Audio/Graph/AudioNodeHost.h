// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFormat.h"

#include <cstdint>

namespace tonvale {

class AudioNode;

/// What a source is about to play.
struct Playback {
    AudioFormat format;
    std::uint32_t frameCount = 0;
    bool startsInTheMiddle = false;  ///< of a song, where a wave may stand anywhere
};

/// Whom the nodes of a graph tell what becomes of them: the engine that they are attached to.
/// @thread CONTROL
class AudioNodeHost {
public:
    AudioNodeHost() = default;
    AudioNodeHost(const AudioNodeHost&) = delete;
    AudioNodeHost& operator=(const AudioNodeHost&) = delete;
    virtual ~AudioNodeHost() = default;

    /// `node` is about to go. When this returns, nothing renders or refers to it.
    virtual void leave(AudioNode& node) noexcept = 0;

    /// A source starts to play; endPlayback() came last.
    virtual void beginPlayback(const Playback& playback) = 0;

    /// A source has forgotten what it played. When this returns, nothing more of it reaches the
    /// device.
    virtual void endPlayback() noexcept = 0;
};

}  // namespace tonvale
