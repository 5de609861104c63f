// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Decoding/FFmpeg.h"
#include "Platform/Audio/Decoding/MusicExtent.h"

#include <cstdint>

namespace tonvale {

/// How far back a decoder remembers, which decides how a reader may seek.
struct CodecMemory {
    /// Frames that must be decoded before those that are wanted.
    std::int64_t preroll = 0;

    /// 0 for decoders that forget everything within the pre-roll. The others never do, so that
    /// frames would differ with the way they were come to: they are decoded in stretches of this
    /// many frames, each always by a new decoder begun one pre-roll earlier.
    std::int64_t stretch = 0;

    [[nodiscard]] static CodecMemory of(const AVCodecParameters& parameters,
                                        const DecodedFormat& format);
};

}  // namespace tonvale
