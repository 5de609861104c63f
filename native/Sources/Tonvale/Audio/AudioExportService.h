// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

namespace tonvale {

struct RenderProgress {
    std::int64_t renderedFrames;
    std::int64_t totalFrames;
};

/// Called on the rendering thread once before the destination is touched and after each block;
/// throws to stop the render.
using RenderObserver = std::function<void(RenderProgress)>;

/// Renders whole songs into files.
namespace AudioExportService {

/// Renders the song at `sourceURL`, shifted by `pitchCents` at unchanged tempo, into a new file of
/// interleaved 16-bit little-endian samples at the song's own rate, channel count and exact length.
/// The container follows the extension of `destinationURL`; a file already there is deleted first.
/// Blocks until done; renders may run beside each other. When it fails after the destination was
/// created, the unfinished file stays.
/// @param pitchCents  clamped to -1200 ... 1200
/// @error AudioExportError; PlatformError from opening, deleting, reading and writing
/// @thread WORKER
void render(const std::filesystem::path& sourceURL, const std::filesystem::path& destinationURL,
            int pitchCents);

/// The same, with someone watching.
/// @error also whatever `observer` throws
void render(const std::filesystem::path& sourceURL, const std::filesystem::path& destinationURL,
            int pitchCents, const RenderObserver& observer);

}  // namespace AudioExportService

}  // namespace tonvale
