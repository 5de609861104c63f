// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

namespace tonvale {

/// The four-character code of linear PCM, "lpcm".
inline constexpr std::uint32_t audioFormatLinearPCM = 0x6C70636D;

/// What a written audio file holds on disk. Only what the defaults say can be written:
/// interleaved 16-bit little-endian integers; anything else is refused as an unknown format.
struct AudioFileSettings {
    std::uint32_t formatID = audioFormatLinearPCM;
    double sampleRate = 0;  ///< frames per second; stored as a whole number
    std::uint32_t numberOfChannels = 0;
    std::uint32_t linearPCMBitDepth = 16;
    bool linearPCMIsFloat = false;
    bool linearPCMIsBigEndian = false;
    bool linearPCMIsNonInterleaved = false;

    /// Not part of the sample format: where the loudspeakers stand, as in AudioFormat. Used when
    /// it has as many bits as there are channels; otherwise more than two of them get the
    /// usual positions of their number.
    std::uint32_t channelMask = 0;
};

}  // namespace tonvale
