// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFile.h"
#include "Platform/Audio/Graph/AudioNode.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

namespace tonvale {

/// Plays one segment of an audio file and silence after it.
class AudioPlayerNode final : public AudioNode {
public:
    /// Gets frames [startingFrame, startingFrame + frameCount) ready to play. Nothing else may be
    /// scheduled: stop() comes first. The file is held until then.
    /// @param file  open for reading, in the format that the graph was connected with
    /// @thread CONTROL
    void scheduleSegment(std::shared_ptr<AudioFile> file, std::int64_t startingFrame,
                         std::uint32_t frameCount);

    /// Starts playing what was scheduled. @thread CONTROL
    void play();

    /// Falls silent and discards what was scheduled. @thread CONTROL
    void stop();

    /// Waits while a CONTROL call is under way, and the other way round.
    void render(AudioPCMBuffer& buffer, std::uint32_t frameCount) override;

private:
    struct Segment {
        std::shared_ptr<AudioFile> file;
        std::int64_t nextFrame;
        std::int64_t endFrame;
    };

    [[nodiscard]] std::uint32_t renderSegment(AudioPCMBuffer& buffer, std::uint32_t frameCount);

    std::mutex mutex_;  // of both below
    std::optional<Segment> segment_;
    bool isPlaying_ = false;
};

}  // namespace tonvale
