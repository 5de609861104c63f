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
    DirectPath(const Geometry& geometry, unsigned channelCount);

    void reset(bool isOpen) noexcept;
    /// Takes a block of input and replaces the engine's block by the input of that time, or by a
    /// crossfade when `wanted` changes.
    void process(const float* const* input, bool wanted, std::span<float* const> output) noexcept;

private:
    const Geometry& geometry_;
    InputHistory input_;
    Array<float> fadeIn_;
    bool isOpen_ = true;
};

}  // namespace tonvale::timepitch
