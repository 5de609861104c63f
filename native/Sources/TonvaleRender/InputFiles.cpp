// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/InputFiles.h"

#include "TonvaleRender/UsageError.h"

#include <algorithm>

namespace tonvale {

InputFiles::InputFiles(const std::vector<std::filesystem::path>& songs)
    : areSeveral_(songs.size() > 1)
{
    for (const auto& song : songs) {
        struct stat status = {};
        if (::stat(song.c_str(), &status) == 0) {
            files_.emplace_back(status.st_dev, status.st_ino);
        }
    }
    std::ranges::sort(files_);
    if (areSeveral_ && files_.empty()) {
        throw UsageError("None of these songs is there; names with blanks need quotes.");
    }
}

bool InputFiles::contains(const struct stat& file) const
{
    return std::ranges::binary_search(files_, std::pair(file.st_dev, file.st_ino));
}

}  // namespace tonvale
