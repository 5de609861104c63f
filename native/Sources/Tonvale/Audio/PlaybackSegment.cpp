// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Audio/PlaybackSegment.h"

#include "Platform/Foundation/Precondition.h"

#include <cmath>
#include <limits>

namespace tonvale {

namespace {

std::int64_t truncatedFrame(double frame) noexcept
{
    precondition(std::isfinite(frame) && std::abs(frame) < 0x1p63);
    return static_cast<std::int64_t>(frame);
}

std::uint32_t frameCount(std::int64_t frames) noexcept
{
    precondition(frames >= 0 && frames <= std::numeric_limits<std::uint32_t>::max());
    return static_cast<std::uint32_t>(frames);
}

}  // namespace

PlaybackSegment playbackSegment(double startTime, std::int64_t length, double sampleRate) noexcept
{
    const double duration = static_cast<double>(length) / sampleRate;
    double start = startTime <= 0 ? 0 : startTime;
    start = duration < start ? duration : start;
    const std::int64_t startingFrame = truncatedFrame(start * sampleRate);
    // Of one length in twelve, duration times rate falls short of the length by a rounding, and
    // the last frame would seem to be left.
    const std::int64_t remaining = start < duration ? length - startingFrame : 0;
    if (remaining > 0) {
        return {start, startingFrame, frameCount(remaining)};
    }
    return {0, 0, frameCount(length)};
}

}  // namespace tonvale
