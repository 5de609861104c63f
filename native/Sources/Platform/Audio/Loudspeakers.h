// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

namespace tonvale {

/// How many positions a channel mask can name, see AudioFormat.
inline constexpr std::uint32_t loudspeakerPositions = 18;

/// Where the loudspeakers of `channelCount` channels stand, one bit per channel: `mask`, if it
/// names as many, else the usual positions of their number. 0 when neither is known; one and two
/// channels have no usual positions, because everybody knows them.
/// @thread ANY
[[nodiscard]] std::uint32_t loudspeakersFor(std::uint32_t channelCount,
                                            std::uint32_t mask) noexcept;

}  // namespace tonvale
