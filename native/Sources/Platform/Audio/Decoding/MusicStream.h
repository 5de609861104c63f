// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFormat.h"
#include "Platform/Audio/AudioPCMBuffer.h"
#include "Platform/Audio/Decoding/CodecMemory.h"
#include "Platform/Audio/Decoding/FrameDecoder.h"
#include "Platform/Audio/Decoding/LocalInput.h"
#include "Platform/Audio/Decoding/MusicExtent.h"
#include "Platform/Audio/Decoding/PacketSource.h"

#include <cstdint>
#include <memory>

namespace tonvale {

/// Puts decoded blocks on the song's time line: every frame where its packet's stamp says, gaps
/// filled with silence, encoder padding cut off at both ends.
///
/// A *raw* frame is counted from the first decoded one, frames of music from extent().start.
/// Decoding goes in *runs*: a new decoder, begun early enough before the frames wanted.
/// @thread WORKER; one thread at a time
class MusicStream {
public:
    /// Recognises the format and decodes the first frame.
    /// @error PlatformError in the system's or the library's words; also for a song of more frames
    ///        than 32 bits count
    explicit MusicStream(std::unique_ptr<LocalInput> input);

    [[nodiscard]] const AudioFormat& format() const noexcept { return format_; }
    [[nodiscard]] std::int64_t length() const noexcept { return extent_.length; }

    /// As AudioFile::read().
    void read(std::int64_t startFrame, AudioPCMBuffer& buffer, std::uint32_t frameCount);

private:
    [[nodiscard]] bool decodeFirstBlock();
    void fill(std::int64_t raw, AudioPCMBuffer& buffer, std::uint32_t frameCount);
    std::uint32_t copyBlock(std::int64_t raw, AudioPCMBuffer& buffer, std::uint32_t first,
                            std::uint32_t room);

    void reach(std::int64_t raw);
    [[nodiscard]] bool needsNewRun(std::int64_t raw) const noexcept;
    void beginRun(std::int64_t raw);
    [[nodiscard]] bool decodeBlock();
    [[nodiscard]] bool sendPacket();
    void placeBlock();

    [[nodiscard]] std::int64_t toTicks(std::int64_t frames) const noexcept;
    [[nodiscard]] std::int64_t toFrames(std::int64_t ticks) const noexcept;

    std::unique_ptr<LocalInput> input_;
    std::unique_ptr<PacketSource> source_;
    std::unique_ptr<FrameDecoder> decoder_;
    UniquePacket packet_;
    AudioFormat format_;
    MusicExtent extent_;
    CodecMemory memory_;

    // The current run. Raw frames [knownFrom_, blockEnd_) can be copied: those before the block
    // are a gap.
    std::int64_t knownFrom_ = 0;
    std::int64_t blockStart_ = 0;
    std::int64_t blockEnd_ = 0;
    std::int64_t runEnd_ = 0;    ///< where another run has to begin
    std::int64_t feedFrom_ = 0;  ///< packets stamped earlier, in ticks, are not decoded
    bool isDraining_ = false;    ///< all packets were sent
    bool isAtEnd_ = false;       ///< all blocks were received
    bool hasFailed_ = false;     ///< the last read did
};

}  // namespace tonvale
