// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

namespace tonvale {

/// How samples lie in memory everywhere in the audio layer: 32-bit float, nominally in [-1, 1],
/// one contiguous array per channel (non-interleaved). Only rate and channel count vary; where the
/// loudspeakers stand is passed along for files that can tell it, and changes nothing else.
struct AudioFormat {
    double sampleRate = 0;           ///< frames per second
    std::uint32_t channelCount = 0;  ///< in the order of WAVE files: left, right, centre, ...

    /// The loudspeakers, one bit per channel in the channels' order, with the 18 positions of
    /// WAVE_FORMAT_EXTENSIBLE: 1 front left, 2 front right, 4 front centre, ...; 0: unknown.
    std::uint32_t channelMask = 0;

    /// Rate and channel count decide: samples of equal formats can be mixed and copied, whatever
    /// is known of the loudspeakers.
    friend bool operator==(const AudioFormat& left, const AudioFormat& right) noexcept
    {
        return left.sampleRate == right.sampleRate && left.channelCount == right.channelCount;
    }
};

}  // namespace tonvale
