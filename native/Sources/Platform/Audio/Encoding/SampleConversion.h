// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <span>

namespace tonvale {

/// Converts samples in [-1, 1) to 16-bit integers, one 32768th a step, rounded to the nearest.
/// What lies outside saturates, what is not a number becomes 0; a decoded 16-bit file comes back
/// bit for bit.
/// @param samples      one channel
/// @param interleaved  receives sample i at [i * stride]
/// @thread ANY
void convertToInt16(std::span<const float> samples, std::int16_t* interleaved,
                    std::uint32_t stride) noexcept;

}  // namespace tonvale
