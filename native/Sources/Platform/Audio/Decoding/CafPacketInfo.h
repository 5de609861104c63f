// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>

namespace tonvale {

class LocalInput;

/// What the packet table of a CAF file says of its music.
struct CafPacketInfo {
    std::int64_t validFrames = 0;
    std::int64_t primingFrames = 0;  ///< before the music

    /// @return nothing when the file has no packet table, or one that cannot be true
    /// @error PlatformError when the disk fails
    [[nodiscard]] static std::optional<CafPacketInfo> parse(LocalInput& input);
};

}  // namespace tonvale
