// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFile.h"
#include "Platform/Audio/AudioPCMBuffer.h"
#include "Tonvale/Audio/AudioPreviewEngine.h"

namespace tonvale {

/// What the tests see of the preview engine beside its operations.
struct AudioPreviewEngineInternals {
    static AudioEngine& engine(AudioPreviewEngine& preview) { return preview.engine_; }
    static AudioPlayerNode& player(AudioPreviewEngine& preview) { return preview.player_; }
    static bool isPlaying(const AudioPreviewEngine& preview)
    {
        return preview.playbackStartDate_.has_value();
    }
    static double playbackStartTime(const AudioPreviewEngine& preview)
    {
        return preview.playbackStartTime_;
    }
    /// In cents.
    static float pitch(const AudioPreviewEngine& preview) { return preview.pitchUnit_.pitch(); }
    static std::int64_t fileLength(const AudioPreviewEngine& preview)
    {
        return preview.audioFile_ ? preview.audioFile_->length() : -1;
    }
    static AudioFormat fileFormat(const AudioPreviewEngine& preview)
    {
        return preview.audioFile_->processingFormat();
    }

    /// Without a device: whoever asks takes the frames, and nobody else.
    static void renderByHand(AudioPreviewEngine& preview)
    {
        preview.engine_.enableManualRenderingMode(AudioEngineManualRenderingMode::offline,
                                                  fileFormat(preview), 4096);
    }

    /// The next sample of the first channel that the player gives.
    static float nextSample(AudioPreviewEngine& preview)
    {
        const auto buffer = AudioPCMBuffer::create(fileFormat(preview), 1);
        preview.player_.render(*buffer, 1);
        return buffer->channel(0)[0];
    }
};

}  // namespace tonvale
