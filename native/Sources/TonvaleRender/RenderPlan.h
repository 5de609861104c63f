// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "TonvaleRender/RenderRequest.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <vector>

namespace tonvale {

/// One file to be saved.
struct PlannedRender {
    std::filesystem::path output;
    std::optional<MusicKey> targetKey;  ///< where the shift is given by keys
    int cents = 0;                      ///< unless the song's key is still to be found
};

struct PlannedSong {
    std::filesystem::path input;
    std::vector<PlannedRender> renders;
};

/// Which files come out of a request, and from which songs.
struct RenderPlan {
    std::vector<PlannedSong> songs;
    std::optional<std::filesystem::path> folder;  ///< where all of them go; may be still to create

    [[nodiscard]] std::size_t renderCount() const;
};

/// Results go where the request says, or beside their song, under a name that tells the key
/// ("Song - Key of Eb.wav") or the shift ("Song (+3 semitones).wav"). Touches nothing.
/// @error UsageError where several results have no folder to go to, or two would be one file
[[nodiscard]] RenderPlan planRenders(const RenderRequest& request);

}  // namespace tonvale
