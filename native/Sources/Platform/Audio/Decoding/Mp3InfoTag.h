// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Decoding/CodedFrame.h"

#include <cstdint>
#include <optional>
#include <span>

namespace tonvale {

/// What an encoder says of the stream in its first frame, which holds no music: a "Xing" or
/// "Info" tag, maybe with the LAME extension, or a "VBRI" tag.
struct Mp3InfoTag {
    std::optional<std::int64_t> packetCount;  ///< this frame not counted
    std::optional<std::int64_t> byteCount;    ///< this frame included by most encoders

    /// Whether the encoder told its padding; else both numbers are 0.
    bool hasPadding = false;
    std::int64_t startPadding = 0;  ///< frames before the music, decoder's delay included
    std::int64_t endPadding = 0;    ///< frames behind it; negative where the decoder's delay pushes
                                    ///< the last frames of music out of the stream

    /// @param frame  a whole frame
    /// @return nothing for an ordinary frame of music
    [[nodiscard]] static std::optional<Mp3InfoTag> parse(const CodedFrameHeader& header,
                                                         std::span<const std::uint8_t> frame);
};

}  // namespace tonvale
