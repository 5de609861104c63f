// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/SongDetection.h"

#include "Platform/Foundation/PlatformError.h"
#include "TonvaleRender/TerminalText.h"

namespace tonvale {

DetectedSongDetails detectSong(const std::filesystem::path& song)
{
    try {
        return EssentiaKeyDetector::detectSongDetails(song);
    } catch (const LocalizedError& error) {
        throw PlatformError("Could not detect the key of " + quotedName(song) + ": "
                            + error.errorDescription());
    }
}

std::string detectionLines(const std::filesystem::path& song, const DetectedSongDetails& details,
                           bool namesSong)
{
    std::string lines = namesSong ? quotedName(song) + "\n" : "";
    for (const std::string& line : details.displayLines()) {
        lines += line + "\n";
    }
    return lines;
}

}  // namespace tonvale
