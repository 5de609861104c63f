// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Tonvale/Keys/MusicKey.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace tonvale {

/// The songs to render, and how.
struct RenderRequest {
    std::vector<std::filesystem::path> inputs;    ///< one at least
    std::optional<std::filesystem::path> output;  ///< a file or a folder; none: beside each song
    /// Where the shift is given by keys: the one to render, or one for each of the twelve notes.
    std::vector<MusicKey> targetKeys;
    std::optional<MusicKey> sourceKey;  ///< with targetKeys; none: found by listening to the song
    int cents = 0;                      ///< -600 ... 600, without targetKeys
    bool countsSemitones = false;       ///< the shift was given by --semitones
    unsigned jobs = 1;                  ///< how many renders may run beside each other, 1 ... 64
    bool replacesOutput = false;
    bool isQuiet = false;

    [[nodiscard]] bool detectsSourceKey() const { return !targetKeys.empty() && !sourceKey; }
};

}  // namespace tonvale
