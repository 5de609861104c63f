// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <optional>

namespace tonvale {

class LocalInput;

/// What the movie box of an MP4/MOV file says of when one track plays.
struct Mp4Timing {
    struct Edit {
        std::int64_t mediaStart = 0;  ///< media ticks
        std::int64_t duration = 0;    ///< movie ticks; 0 in fragmented files: to the end
    };

    std::int64_t movieTicksPerSecond = 0;
    std::int64_t mediaTicksPerSecond = 0;
    std::optional<Edit> edit;  ///< the first edit's start, with all edits' durations

    /// @param trackId  as in the track's header
    /// @return nothing when the file has no such track, or is damaged there
    /// @error PlatformError when the disk fails
    [[nodiscard]] static std::optional<Mp4Timing> parse(LocalInput& input, std::uint32_t trackId);
};

}  // namespace tonvale
