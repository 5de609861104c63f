// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Encoding/ChannelMap.h"

#include <sndfile.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace tonvale {

namespace {

/// In the order of the mask's bits.
constexpr std::array<int, 18> loudspeakers = {
    SF_CHANNEL_MAP_LEFT,
    SF_CHANNEL_MAP_RIGHT,
    SF_CHANNEL_MAP_CENTER,
    SF_CHANNEL_MAP_LFE,
    SF_CHANNEL_MAP_REAR_LEFT,
    SF_CHANNEL_MAP_REAR_RIGHT,
    SF_CHANNEL_MAP_FRONT_LEFT_OF_CENTER,
    SF_CHANNEL_MAP_FRONT_RIGHT_OF_CENTER,
    SF_CHANNEL_MAP_REAR_CENTER,
    SF_CHANNEL_MAP_SIDE_LEFT,
    SF_CHANNEL_MAP_SIDE_RIGHT,
    SF_CHANNEL_MAP_TOP_CENTER,
    SF_CHANNEL_MAP_TOP_FRONT_LEFT,
    SF_CHANNEL_MAP_TOP_FRONT_CENTER,
    SF_CHANNEL_MAP_TOP_FRONT_RIGHT,
    SF_CHANNEL_MAP_TOP_REAR_LEFT,
    SF_CHANNEL_MAP_TOP_REAR_CENTER,
    SF_CHANNEL_MAP_TOP_REAR_RIGHT,
};

constexpr std::uint32_t everybodyKnows = 2;  // where one and two loudspeakers stand

/// The positions that decoders assume too when a file does not tell, from three channels on.
constexpr std::array<std::uint32_t, 6> usualMasks = {
    0x00B,  // left, right, LFE
    0x107,  // left, right, centre, rear centre
    0x037,  // left, right, centre, rear left and right
    0x03F,  // the same with LFE
    0x70F,  // left, right, centre, LFE, rear centre, side left and right
    0x63F,  // 5.1 with side left and right
};

/// 0 when the loudspeakers cannot be told, or need not.
std::uint32_t maskFor(const AudioFileSettings& settings)
{
    const std::uint32_t channelCount = settings.numberOfChannels;
    if (channelCount <= everybodyKnows) {
        return 0;
    }
    const bool isWhole = settings.channelMask < 1U << loudspeakers.size()
                         && std::popcount(settings.channelMask) == static_cast<int>(channelCount);
    if (isWhole) {
        return settings.channelMask;
    }
    const std::size_t index = channelCount - everybodyKnows - 1;
    return index < usualMasks.size() ? usualMasks[index] : 0;
}

}  // namespace

std::vector<int> channelMapFor(const AudioFileSettings& settings)
{
    const std::uint32_t mask = maskFor(settings);
    std::vector<int> map;
    for (std::size_t bit = 0; bit < loudspeakers.size(); ++bit) {
        if ((mask >> bit & 1U) != 0) {
            map.push_back(loudspeakers[bit]);
        }
    }
    return map;
}

}  // namespace tonvale
