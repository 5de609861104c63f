// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Tonvale/EssentiaKeyDetector.h"

#include <filesystem>
#include <string>

namespace tonvale {

/// Listens to a song; blocks until that is done.
/// @error LocalizedError with a whole sentence that names the song
/// @thread WORKER
[[nodiscard]] DetectedSongDetails detectSong(const std::filesystem::path& song);

/// Its key and its tempo, a line each; before them, where there are several songs, its name.
[[nodiscard]] std::string detectionLines(const std::filesystem::path& song,
                                         const DetectedSongDetails& details, bool namesSong);

}  // namespace tonvale
