// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Keys/ExportFileName.h"

#include "Platform/Foundation/FileName.h"

#include <string>

namespace tonvale {

std::filesystem::path defaultExportFileName(const std::filesystem::path& forFile, MusicKey target)
{
    // The bytes of the name pass through untouched, whatever their encoding.
    std::filesystem::path name = FileName::deletingPathExtension(forFile);
    name += " - Key of " + std::string(target.fileNameComponent()) + ".wav";
    return name;
}

}  // namespace tonvale
