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

/// Plays one segment of an audio file and silence after it. Rendering never makes CONTROL wait for
/// the disk or a decoder; it takes notice of what CONTROL did at its next block.
class AudioPlayerNode final : public AudioNode {
public:
    AudioPlayerNode() = default;
    ~AudioPlayerNode() override;

    /// Gets frames [startingFrame, startingFrame + frameCount) ready to play. Nothing else may be
    /// scheduled: stop() comes first. The file is held until then, and until the thread that
    /// renders has noticed; only that thread reads it.
    /// @param file  open for reading, in the format that the graph was connected with, if any
    /// @thread CONTROL
    void scheduleSegment(std::shared_ptr<AudioFile> file, std::int64_t startingFrame,
                         std::uint32_t frameCount);

    /// Starts playing what was scheduled. @thread CONTROL
    void play();

    /// Falls silent and discards what was scheduled. @thread CONTROL
    void stop();

    void prepare(const RenderSettings& settings) override;
    /// What lies before the segment in its file counts as being before its beginning.
    std::uint32_t reset(std::uint32_t prerollFrames) override;
    /// Offline, a file that fails throws. Live, it is silent from there on: nobody could be told.
    void render(AudioPCMBuffer& buffer, std::uint32_t frameCount) override;

private:
    struct Segment {
        std::shared_ptr<AudioFile> file;
        std::int64_t startFrame;
        std::int64_t endFrame;
    };

    void tellHost();
    void noticeChange(bool isAnew);
    [[nodiscard]] std::uint32_t renderSegment(AudioPCMBuffer& buffer, std::uint32_t frameCount);
    void readSegment(AudioPCMBuffer& buffer, std::uint32_t frameCount);

    std::mutex mutex_;  // of these three
    std::optional<Segment> scheduled_;
    bool isPlaying_ = false;
    std::uint64_t changeCount_ = 0;

    // Of the thread that renders.
    std::optional<Segment> segment_;  // being played
    std::int64_t nextFrame_ = 0;
    std::uint64_t noticedCount_ = 0;
    bool isLive_ = false;
};

}  // namespace tonvale
