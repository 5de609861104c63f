// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>

namespace tonvale {

/// The arithmetic of file names: on bytes, whatever their encoding, and without a look at the disk.
/// An extension is what follows the last dot of the last component; a name that begins or ends
/// with its only dot has none.
/// @thread ANY; every operation is pure
namespace FileName {

/// "take.mp3" of "/music/take.mp3"; a slash at the end does not count.
[[nodiscard]] std::filesystem::path lastPathComponent(const std::filesystem::path& url);

/// "mp3" of "/music/take.mp3", without the dot; empty where there is none.
[[nodiscard]] std::string pathExtension(const std::filesystem::path& url);

/// "take.final" of "/music/take.final.mp3": the last component less its extension.
[[nodiscard]] std::filesystem::path deletingPathExtension(const std::filesystem::path& url);

}  // namespace FileName

}  // namespace tonvale
