// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFormat.h"
#include "Platform/Audio/AudioPCMBuffer.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace tonvale {

/// Brings any number of channels to two loudspeakers.
///
/// One channel sounds on both sides at its own level, two stay what they are. More are mixed by
/// where their loudspeakers stand, in the proportions of ITU-R BS.775: centre and surround 3 dB
/// down, the channel of low effects left out; then all of it is turned down as far as it takes for
/// the sum never to exceed full scale.
/// @thread one at a time
class StereoMix {
public:
    static constexpr std::uint32_t sides = 2;

    explicit StereoMix(const AudioFormat& format);

    /// Mixes the valid frames of `buffer` into `left` and `right`, which have room for them.
    void mix(const AudioPCMBuffer& buffer, std::span<float> left,
             std::span<float> right) const noexcept;

private:
    using Gains = std::array<float, sides>;

    std::vector<Gains> gains_;  // one for each channel
};

}  // namespace tonvale
