// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Encoding/SampleConversion.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace tonvale {

void convertToInt16(std::span<const float> samples, std::int16_t* interleaved,
                    std::uint32_t stride) noexcept
{
    // Added to this, a number loses its fraction (to the nearest, halves to the even one) and its
    // low bits are those of a whole number; no call and no branch, so several are converted at
    // once.
    constexpr float noFraction = 12582912.0F;  // 1.5 * 2^23
    for (const float sample : samples) {
        const float number = std::isnan(sample) ? 0.0F : sample * 32768.0F;
        const float scaled = std::min(std::max(number, -32768.0F), 32767.0F);
        *interleaved = static_cast<std::int16_t>(std::bit_cast<std::int32_t>(scaled + noFraction));
        interleaved += stride;
    }
}

}  // namespace tonvale
