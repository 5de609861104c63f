// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Encoding/ChannelMap.h"

#include "Platform/Audio/Loudspeakers.h"

#include <sndfile.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace tonvale {

namespace {

/// In the order of the mask's bits.
constexpr std::array<int, loudspeakerPositions> loudspeakers = {
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

/// 0 when the loudspeakers cannot be told, or need not.
std::uint32_t maskFor(const AudioFileSettings& settings)
{
    return settings.numberOfChannels <= everybodyKnows
               ? 0
               : loudspeakersFor(settings.numberOfChannels, settings.channelMask);
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
