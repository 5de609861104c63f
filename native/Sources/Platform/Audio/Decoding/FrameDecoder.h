// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Decoding/FFmpeg.h"
#include "Platform/Audio/Decoding/MusicExtent.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tonvale {

/// Decodes packets into planar float frames of one format: that of the first frame ever decoded.
/// @thread WORKER; one thread at a time
class FrameDecoder {
public:
    /// @param tickDuration  seconds per unit of the packets' time stamps
    /// @error PlatformError in the library's words
    FrameDecoder(const AVCodecParameters& parameters, AVRational tickDuration);

    /// Forgets everything decoded, as a new decoder would; format() stays.
    /// A flush would not do: some decoders keep parts of their state across it.
    /// @error PlatformError in the library's words
    void restart();

    /// Gives the decoder one packet. @return 0 or the library's error number
    int send(const AVPacket& packet) noexcept;

    /// Says that no packets follow, so that what the decoder holds back comes out.
    void sendEnd() noexcept;

    /// Fetches the next decoded block. @return false when another packet is needed or all is out
    [[nodiscard]] bool receive();

    [[nodiscard]] const DecodedFormat& format() const noexcept { return format_; }

    /// Takes the format that the container tells, for want of a frame to tell it.
    /// @return false when the container does not tell
    [[nodiscard]] bool adoptDeclaredFormat() noexcept;

    /// Of the current block: the time stamp it got from its packet, or noTimeStamp.
    [[nodiscard]] std::int64_t timeStamp() const noexcept;
    [[nodiscard]] std::int64_t frameCount() const noexcept { return frame_->nb_samples; }

    /// Whether the current block can be heard: one of another sample rate than format()'s cannot.
    [[nodiscard]] bool isAudible() const noexcept;

    /// One channel of the current block, converted when first asked for.
    /// @return frameCount() samples, valid until the next receive(); nothing when the conversion
    ///         is not possible
    [[nodiscard]] std::span<const float> channel(std::uint32_t index);

private:
    void adoptFormat();
    [[nodiscard]] bool convert();
    [[nodiscard]] bool prepareResampler();
    [[nodiscard]] bool isAlreadyConverted() const noexcept;

    UniqueCodecParameters parameters_;
    AVRational tickDuration_;
    UniqueCodecContext codec_;
    UniqueFrame frame_;
    DecodedFormat format_;

    UniqueResampler resampler_;
    AVSampleFormat resamplerFormat_ = AV_SAMPLE_FMT_NONE;  ///< its input
    ChannelLayout resamplerLayout_;                        ///< its input
    ChannelLayout layout_;                                 ///< of every output block

    enum class Conversion { pending, done, failed };
    Conversion conversion_ = Conversion::pending;
    std::vector<float> converted_;       ///< channel after channel, `stride_` apart
    std::vector<std::uint8_t*> planes_;  ///< of converted_
    std::size_t stride_ = 0;             ///< samples
};

}  // namespace tonvale
