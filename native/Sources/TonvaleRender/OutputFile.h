// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "TonvaleRender/InputFiles.h"

#include <filesystem>

namespace tonvale {

/// Whether the name given for the output means a folder: one that is there, or any that ends with
/// a slash.
[[nodiscard]] bool isFolder(const std::filesystem::path& output);

/// Makes sure the folder is there, creating it where it is not.
/// @error LocalizedError with a whole sentence
void createFolder(const std::filesystem::path& folder);

/// Makes sure that writing `output` can harm nothing, before anything is touched: its extension
/// names a container, its folder is there, it is none of the songs, no device, and no file that
/// the user did not allow to replace.
/// @error LocalizedError with a whole sentence
/// @thread ANY
void checkOutput(const std::filesystem::path& output, const InputFiles& songs, bool replacesOutput);

}  // namespace tonvale
