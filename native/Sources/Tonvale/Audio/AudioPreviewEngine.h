// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Graph/AudioEngine.h"
#include "Platform/Audio/Graph/AudioPlayerNode.h"
#include "Platform/Audio/Graph/AudioUnitTimePitch.h"
#include "Platform/Foundation/Clock.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace tonvale {

class AudioFile;

/// Plays a song at another pitch, from any position, and says where it is.
///
/// The position is not asked of the device: it is where playback was started and the time that has
/// passed since, which is all that a display needs.
/// @thread CONTROL
class AudioPreviewEngine {
public:
    AudioPreviewEngine();
    ~AudioPreviewEngine();

    /// Opens a song; the position becomes 0, and the desktop's mixer shows the file's name. The
    /// caller stops a playing one before.
    /// @error PlatformError; nothing changes then
    void load(const std::filesystem::path& url);

    /// Plays from `startTime` on, in seconds; from the beginning where that is at or past the end.
    /// Plays anew where it plays already, does nothing without a song.
    /// @error PlatformError when there is no sound device; only the pitch is set then
    void play(int pitchCents, double startTime);

    /// Falls silent and keeps the position. The device stays open.
    void stop();

    /// What is playing changes its pitch and plays on.
    void setPitch(int cents);

    /// The position in seconds, at most duration().
    [[nodiscard]] double currentTime() const;

    /// Of the song in seconds; 0 without one.
    [[nodiscard]] double duration() const;

private:
    friend struct AudioPreviewEngineInternals;  // for the tests

    AudioEngine engine_;
    AudioPlayerNode player_;
    AudioUnitTimePitch pitchUnit_;
    std::shared_ptr<AudioFile> audioFile_;
    std::optional<Clock::Instant> playbackStartDate_;  // there while playing
    double playbackStartTime_ = 0;
};

}  // namespace tonvale
