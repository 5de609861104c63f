// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Decoding/PacketSource.h"

#include <cstdint>

namespace tonvale {

/// The packets of one audio stream of a container, through the library's demuxers.
/// Nothing but the given file is ever read: every other access is refused.
/// @thread WORKER; one thread at a time
class ContainerSource final : public PacketSource {
public:
    /// @error PlatformError when the container is damaged beyond use or holds no sound
    ContainerSource(LocalInput& input, const AVInputFormat& format);

    [[nodiscard]] const AVCodecParameters& parameters() const noexcept override;
    [[nodiscard]] AVRational tickDuration() const noexcept override;
    [[nodiscard]] bool hasExactStamps() const noexcept override;
    [[nodiscard]] bool next(AVPacket& packet) override;
    void seek(std::int64_t tick) override;
    void rewind() override;
    void recover() override;
    [[nodiscard]] MusicExtent extent(const DecodedFormat& format) override;

private:
    /// How packets get their stamps.
    enum class Stamping {
        byBytes,      ///< linear PCM: from the byte position
        byContainer,  ///< the container counts frames
        none,         ///< its time stamps are too coarse
    };

    /// Whether a disk that fails while the file is opened is of interest where the container still
    /// could be: many look at the end of the file too, for tags or its length.
    enum class DiskFailures { areTold, areForgotten };

    void open(DiskFailures failures);
    [[nodiscard]] static int findMusic(AVFormatContext& context);
    void chooseStream(int best);
    [[nodiscard]] Stamping stampingOf(const AVStream& stream) const;
    [[nodiscard]] std::int64_t checkedEnd(std::int64_t end, const DecodedFormat& format);
    [[nodiscard]] bool looksTooLong(std::int64_t end, const DecodedFormat& format);
    [[nodiscard]] bool hasFrameTimeBase(const AVStream& stream) const;
    [[nodiscard]] bool readPacket(AVPacket& packet);
    void stamp(AVPacket& packet);
    [[nodiscard]] std::int64_t durationOf(const AVPacket& packet) const;
    [[nodiscard]] bool landsBefore(std::int64_t tick, std::int64_t target);
    [[nodiscard]] const AVStream& stream() const noexcept;

    LocalInput& input_;
    const AVInputFormat& format_;
    UniqueIOContext io_;  ///< outlives context_
    UniqueFormatContext context_;
    int streamIndex_ = -1;
    Stamping stamping_ = Stamping::none;
    std::int64_t dataOffset_ = 0;              ///< of the first packet, bytes
    std::int64_t dataDuration_ = noTimeStamp;  ///< as the header says, ticks
    int frameSize_ = 0;                        ///< bytes; linear PCM only

    UniquePacket pending_;  ///< the packet that a seek looked at
    bool hasPending_ = false;
    std::int64_t runningTick_ = noTimeStamp;  ///< where the next packet begins if it does not say
    std::int64_t packetBudget_ = 0;  ///< packets that may still come; ends loops of damaged files
};

}  // namespace tonvale
