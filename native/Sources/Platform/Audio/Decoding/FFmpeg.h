// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Foundation/PlatformError.h"

// The one place that includes the decoder libraries: they are C, and their macros hold C casts.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/vorbis_parser.h>
#include <libavformat/avformat.h>
#include <libavutil/avstring.h>
#include <libavutil/channel_layout.h>
#include <libavutil/mathematics.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
}

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace tonvale {

/// A packet or stream without a time stamp.
inline constexpr std::int64_t noTimeStamp = AV_NOPTS_VALUE;
inline constexpr int tryAgainError = AVERROR(EAGAIN);
inline constexpr int endOfFileError = AVERROR_EOF;
inline constexpr int invalidDataError = AVERROR_INVALIDDATA;
inline constexpr int noDecoderError = AVERROR_DECODER_NOT_FOUND;
inline constexpr int outOfMemoryError = AVERROR(ENOMEM);
inline constexpr int refusedError = AVERROR(EACCES);
inline constexpr AVRational microseconds = {1, AV_TIME_BASE};

#pragma GCC diagnostic pop

struct FormatContextDeleter {
    void operator()(AVFormatContext* context) const noexcept { avformat_close_input(&context); }
};
struct CodecContextDeleter {
    void operator()(AVCodecContext* context) const noexcept { avcodec_free_context(&context); }
};
struct CodecParametersDeleter {
    void operator()(AVCodecParameters* p) const noexcept { avcodec_parameters_free(&p); }
};
struct PacketDeleter {
    void operator()(AVPacket* packet) const noexcept { av_packet_free(&packet); }
};
struct FrameDeleter {
    void operator()(AVFrame* frame) const noexcept { av_frame_free(&frame); }
};
struct ResamplerDeleter {
    void operator()(SwrContext* context) const noexcept { swr_free(&context); }
};
struct IOContextDeleter {
    void operator()(AVIOContext* context) const noexcept;
};

using UniqueFormatContext = std::unique_ptr<AVFormatContext, FormatContextDeleter>;
using UniqueCodecContext = std::unique_ptr<AVCodecContext, CodecContextDeleter>;
using UniqueCodecParameters = std::unique_ptr<AVCodecParameters, CodecParametersDeleter>;
using UniquePacket = std::unique_ptr<AVPacket, PacketDeleter>;
using UniqueFrame = std::unique_ptr<AVFrame, FrameDeleter>;
using UniqueResampler = std::unique_ptr<SwrContext, ResamplerDeleter>;
using UniqueIOContext = std::unique_ptr<AVIOContext, IOContextDeleter>;

/// A channel layout and the memory that it may own.
class ChannelLayout {
public:
    ChannelLayout() = default;
    /// A copy; channels without names get the usual ones of their number.
    /// @error PlatformError when there is no memory
    explicit ChannelLayout(const AVChannelLayout& source);
    ChannelLayout(ChannelLayout&& other) noexcept : layout_(std::exchange(other.layout_, {})) {}
    ChannelLayout& operator=(ChannelLayout&& other) noexcept
    {
        std::swap(layout_, other.layout_);
        return *this;
    }
    ChannelLayout(const ChannelLayout&) = delete;
    ChannelLayout& operator=(const ChannelLayout&) = delete;
    ~ChannelLayout() { av_channel_layout_uninit(&layout_); }

    /// For the library, which writes to it nowhere but does not say so.
    [[nodiscard]] AVChannelLayout* get() noexcept { return &layout_; }
    [[nodiscard]] bool isSameAs(const ChannelLayout& other) const noexcept;

private:
    AVChannelLayout layout_ = {};
};

/// The library's sentence for one of its (negative) error numbers.
[[nodiscard]] PlatformError decoderError(int errorNumber);

/// The same for an error met while a file was opened. A table that a damaged file says to be huge
/// is refused as if there were no memory; where there is, the file's damage is what is told.
[[nodiscard]] PlatformError openingError(int errorNumber);

/// @error PlatformError when there is no memory
[[nodiscard]] UniquePacket makePacket();
[[nodiscard]] UniqueFrame makeFrame();
[[nodiscard]] UniqueCodecParameters makeCodecParameters();

/// The frames to drop at the end that "skip samples" side data asks for.
/// @param data  may be null
[[nodiscard]] std::int64_t endDiscardOf(const std::uint8_t* data, std::size_t size) noexcept;

/// The library's error number for a value of `errno`.
[[nodiscard]] int errorFromErrno(int errorNumber) noexcept;

/// Keeps the libraries from printing; the first call counts.
void silenceDecoderLibraries();

}  // namespace tonvale
