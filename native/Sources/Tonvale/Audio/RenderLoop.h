// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Graph/AudioEngine.h"
#include "Tonvale/Audio/AudioExportError.h"

#include <algorithm>
#include <cstdint>

namespace tonvale {

inline constexpr std::uint32_t maximumRenderFrameCount = 4096;

/// Pulls `sourceLength` frames out of a running engine and appends them to a file, through one
/// buffer of at least maximumRenderFrameCount frames.
///
/// An engine that has nothing to give yet is asked again, without a limit on the attempts.
/// @tparam Engine, File, Buffer  AudioEngine, AudioFile, AudioPCMBuffer; stand-ins in tests
/// @param observer  called after each attempt with the frames rendered so far; may throw to stop
/// @return the frames written
/// @error AudioExportError::renderFailed; whatever engine, file or observer throw
template <typename Engine, typename File, typename Buffer, typename Observer>
std::int64_t renderBlocks(Engine& engine, File& destination, Buffer& buffer,
                          std::int64_t sourceLength, Observer&& observer)
{
    std::int64_t written = 0;
    while (engine.manualRenderingSampleTime() < sourceLength) {
        const std::int64_t remaining = sourceLength - engine.manualRenderingSampleTime();
        const auto frames =
            static_cast<std::uint32_t>(std::min<std::int64_t>(remaining, maximumRenderFrameCount));
        switch (engine.renderOffline(frames, buffer)) {
        case AudioEngineManualRenderingStatus::insufficientDataFromInputNode:
        case AudioEngineManualRenderingStatus::cannotDoInCurrentContext:
            break;
        case AudioEngineManualRenderingStatus::success:
            if (buffer.frameLength() > 0) {
                destination.write(buffer);
                written += buffer.frameLength();
            }
            break;
        default:
            throw AudioExportError(AudioExportError::renderFailed);
        }
        observer(engine.manualRenderingSampleTime());
    }
    return written;
}

}  // namespace tonvale
