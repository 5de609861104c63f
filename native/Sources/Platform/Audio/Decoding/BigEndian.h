// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <span>

namespace tonvale {

/// The number that the first four bytes are, the most significant one first.
/// @param b  four bytes at least
/// @thread ANY
[[nodiscard]] inline std::uint32_t bigEndian32(std::span<const std::uint8_t> b) noexcept
{
    return std::uint32_t{b[0]} << 24U | std::uint32_t{b[1]} << 16U | std::uint32_t{b[2]} << 8U
           | b[3];
}

}  // namespace tonvale
