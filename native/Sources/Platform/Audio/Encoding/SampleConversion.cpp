// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Encoding/SampleConversion.h"

#include <algorithm>
#include <cmath>

namespace tonvale {

void convertToInt16(std::span<const float> samples, std::int16_t* interleaved,
                    std::uint32_t stride) noexcept
{
    for (const float sample : samples) {
        const float scaled = std::min(std::max(sample * 32768.0F, -32768.0F), 32767.0F);
        *interleaved = static_cast<std::int16_t>(std::isnan(scaled) ? 0L : std::lrint(scaled));
        interleaved += stride;
    }
}

}  // namespace tonvale
