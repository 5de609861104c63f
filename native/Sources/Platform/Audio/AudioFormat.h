// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

namespace tonvale {

/// How samples lie in memory everywhere in the audio layer: 32-bit float, nominally in [-1, 1],
/// one contiguous array per channel (non-interleaved). Only rate and channel count vary.
struct AudioFormat {
    double sampleRate = 0;           ///< frames per second
    std::uint32_t channelCount = 0;  ///< in the order of WAVE files: left, right, centre, ...

    friend bool operator==(const AudioFormat&, const AudioFormat&) = default;
};

}  // namespace tonvale
