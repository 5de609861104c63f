// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

namespace tonvale {

/// The part of a song that is played from a start on.
struct PlaybackSegment {
    double startTime;  ///< seconds into the song
    std::int64_t startingFrame;
    std::uint32_t frameCount;  ///< up to the song's end
};

/// From `startTime` to the end; the whole song where nothing is left behind it.
/// @param startTime  seconds; a negative one is the beginning. NaN aborts
/// @param length     of the song, in frames; more than 32 bits count aborts
/// @param sampleRate above 0
/// @thread ANY
[[nodiscard]] PlaybackSegment playbackSegment(double startTime, std::int64_t length,
                                              double sampleRate) noexcept;

}  // namespace tonvale
