// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Decoding/CodedFrame.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tonvale {

class LocalInput;

/// Walks from frame to frame through a file of bare MPEG audio or ADTS frames, over tags and
/// damage. What it finds does not depend on where the walk was begun.
/// @thread WORKER; one thread at a time
class FrameWalker {
public:
    struct Found {
        CodedFrameHeader header;
        std::int64_t offset = 0;  ///< bytes from the start of the file
    };

    FrameWalker(LocalInput& input, CodedFrameParser parser);

    /// Finds the next whole frame. @return nothing at the end      @error PlatformError
    [[nodiscard]] std::optional<Found> next();

    /// Continues at a frame found earlier, which next() will then find again.
    void jumpTo(const Found& frame) noexcept;

    /// The bytes of a frame just found, valid until the next call.
    /// @error PlatformError when the disk fails
    [[nodiscard]] std::span<const std::uint8_t> bytesOf(const Found& frame);

    /// How densely frames lie somewhere in the file.
    struct Sample {
        int count = 0;  ///< frames; fewer than asked for near the end
        std::int64_t bytes = 0;
        std::int64_t smallest = 0;  ///< bytes, of one frame
        std::int64_t largest = 0;
    };

    /// Looks at the `count` frames that follow the given place, without moving from its own.
    /// @error PlatformError when the disk fails
    [[nodiscard]] Sample sampleAfter(std::int64_t offset, int count);

    /// Whether any frame follows the given place, rather than tags or the end.
    [[nodiscard]] bool hasFrameAfter(std::int64_t offset);

private:
    [[nodiscard]] std::optional<CodedFrameHeader> headerAt(std::int64_t offset);
    [[nodiscard]] bool isCredible(const CodedFrameHeader& header);
    [[nodiscard]] bool isFollowedBySame(const CodedFrameHeader& header);
    [[nodiscard]] std::int64_t distanceToNextCandidate();
    [[nodiscard]] std::span<const std::uint8_t> window(std::int64_t offset, std::size_t count);

    LocalInput& input_;
    CodedFrameParser parser_;
    std::int64_t offset_ = 0;
    std::uint32_t kind_ = 0;  ///< of the last frame; 0 before the first
    bool isInStep_ = false;   ///< offset_ is where the last frame ended

    std::vector<std::uint8_t> buffer_;
    std::int64_t bufferOffset_ = 0;
    std::size_t bufferCount_ = 0;
};

}  // namespace tonvale
