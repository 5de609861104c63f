// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/Geometry.h"
#include "Platform/Audio/TimePitch/InputHistory.h"

#include <span>

namespace tonvale::timepitch {

/// The input, delayed by the engine's latency: what is heard at the input's own pitch.
///
/// The engine runs on behind it, so that a change of pitch starts from a complete state; the two
/// are exchanged by a raised-cosine crossfade of one block while they sound the same.
/// @thread WORKER, one at a time; only constructing allocates
class DirectPath {
public:
    DirectPath(int block, unsigned channelCount);

    void reset(bool isOpen) noexcept;
    /// Decides for the next block whether the input is to be heard.
    void begin(bool wanted) noexcept;
    /// Replaces a piece of the block by the input of that time, or by a crossfade where the
    /// decision has changed.
    /// @param output  the whole block
    void process(const InputHistory& input, const BlockPart& part,
                 std::span<float* const> output) const noexcept;

private:
    unsigned channelCount_;
    Array<float> fadeIn_;
    bool wasOpen_ = true;
    bool isOpen_ = true;
};

}  // namespace tonvale::timepitch
