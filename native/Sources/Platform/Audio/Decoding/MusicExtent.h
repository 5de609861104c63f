// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

namespace tonvale {

/// What the first decoded packet shows; containers can be wrong (some AAC doubles its rate).
struct DecodedFormat {
    int sampleRate = 0;  ///< frames per second
    int channelCount = 0;
    int framesPerPacket = 0;        ///< of the first packet that gave any
    std::uint32_t channelMask = 0;  ///< as in AudioFormat
};

/// The frames of a decoded stream that are music, the rest being encoder padding.
/// Raw frame 0 is what tick 0 of the PacketSource decodes to.
struct MusicExtent {
    std::int64_t start = 0;   ///< raw frames
    std::int64_t length = 0;  ///< frames, >= 0
};

}  // namespace tonvale
