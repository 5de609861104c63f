// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Tonvale/Keys/MusicKey.h"

#include <filesystem>

namespace tonvale {

/// The name proposed for a song in a new key, without a folder: the song's own name less its last
/// extension, the key, ".wav": "Night Song.mp3" in E-flat major is "Night Song - Key of Eb.wav".
/// @thread ANY
[[nodiscard]] std::filesystem::path defaultExportFileName(const std::filesystem::path& forFile,
                                                          MusicKey target);

}  // namespace tonvale
