// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Decoding/FrameWalker.h"
#include "Platform/Audio/Decoding/Mp3InfoTag.h"
#include "Platform/Audio/Decoding/PacketSource.h"
#include "Platform/Audio/Decoding/PacketTable.h"

#include <cstdint>
#include <optional>

namespace tonvale {

/// The packets of a file that is nothing but frames: MP3 (and MP2, MP1) or ADTS.
/// Such files have no time stamps, so packets are counted; ticks are frames at the rate in the
/// frame headers. Info frames hold no music and are left out wherever they stand.
/// @thread WORKER; one thread at a time
class FramedSource final : public PacketSource {
public:
    /// @error PlatformError when the file has no frames, or the disk fails
    FramedSource(LocalInput& input, CodedFrameParser parser);

    [[nodiscard]] const AVCodecParameters& parameters() const noexcept override;
    [[nodiscard]] AVRational tickDuration() const noexcept override;
    [[nodiscard]] bool hasExactStamps() const noexcept override { return true; }
    [[nodiscard]] bool next(AVPacket& packet) override;
    void seek(std::int64_t tick) override;
    void rewind() override;

    /// Without decoding and, where a trustworthy info tag counts the packets, without a scan.
    [[nodiscard]] MusicExtent extent(const DecodedFormat& format) override;

private:
    [[nodiscard]] std::optional<FrameWalker::Found> nextMusicFrame();
    [[nodiscard]] std::optional<Mp3InfoTag> tagOf(const FrameWalker::Found& found);
    void noteTag(const Mp3InfoTag& tag);
    [[nodiscard]] bool isTrustworthy(const Mp3InfoTag& tag);
    [[nodiscard]] bool fitsFile(const Mp3InfoTag& tag);
    [[nodiscard]] bool fitsFrames(const Mp3InfoTag& tag);
    [[nodiscard]] std::int64_t countedEnd();

    LocalInput& input_;
    FrameWalker walker_;
    UniqueCodecParameters parameters_;
    PacketTable table_;
    FrameWalker::Found first_;            ///< the first frame of all
    std::optional<Mp3InfoTag> firstTag_;  ///< if the file begins with one
    std::int64_t tick_ = 0;               ///< of the next frame

    Mp3InfoTag lastTag_;            ///< of the last part of joined files
    std::int64_t lastTagTick_ = 0;  ///< where that part begins
};

}  // namespace tonvale
