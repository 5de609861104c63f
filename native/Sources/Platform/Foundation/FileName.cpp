// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/FileName.h"

namespace tonvale::FileName {

std::filesystem::path lastPathComponent(const std::filesystem::path& url)
{
    return url.has_filename() ? url.filename() : url.parent_path().filename();
}

std::string pathExtension(const std::filesystem::path& url)
{
    const std::string extension = lastPathComponent(url).extension().string();
    return extension.empty() ? extension : extension.substr(1);
}

std::filesystem::path deletingPathExtension(const std::filesystem::path& url)
{
    // The library counts the dot of "take." as an extension of its own.
    const std::filesystem::path name = lastPathComponent(url);
    return pathExtension(name).empty() ? name : name.stem();
}

}  // namespace tonvale::FileName
