// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Loudspeakers.h"

#include <array>
#include <bit>
#include <cstddef>

namespace tonvale {

namespace {

constexpr std::uint32_t fewestUsual = 3;

/// The positions that decoders assume too when a file does not tell, from three channels on.
constexpr std::array<std::uint32_t, 6> usualMasks = {
    0x00B,  // left, right, LFE
    0x107,  // left, right, centre, rear centre
    0x037,  // left, right, centre, rear left and right
    0x03F,  // the same with LFE
    0x70F,  // left, right, centre, LFE, rear centre, side left and right
    0x63F,  // 5.1 with side left and right
};

}  // namespace

std::uint32_t loudspeakersFor(std::uint32_t channelCount, std::uint32_t mask) noexcept
{
    const bool isWhole =
        mask < 1U << loudspeakerPositions && std::popcount(mask) == static_cast<int>(channelCount);
    if (isWhole) {
        return mask;
    }
    if (channelCount < fewestUsual) {
        return 0;
    }
    const std::size_t index = channelCount - fewestUsual;
    return index < usualMasks.size() ? usualMasks[index] : 0;
}

}  // namespace tonvale
