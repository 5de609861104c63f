// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/FFmpeg.h"

#include <array>

namespace tonvale {

namespace {

template <typename Pointer>
Pointer orOutOfMemory(Pointer pointer)
{
    if (!pointer) {
        throw decoderError(outOfMemoryError);
    }
    return pointer;
}

/// More than opening takes for a day of music in any container.
constexpr std::size_t ampleBytes = std::size_t{256} << 20U;

/// Asked of the library's own allocator, which is the one that has just refused.
bool hasAmpleMemory() noexcept
{
    void* const memory = av_malloc(ampleBytes);
    av_free(memory);
    return memory != nullptr;
}

}  // namespace

void IOContextDeleter::operator()(AVIOContext* context) const noexcept
{
    av_freep(&context->buffer);  // the library may have replaced the buffer it was given
    avio_context_free(&context);
}

ChannelLayout::ChannelLayout(const AVChannelLayout& source)
{
    if (av_channel_layout_copy(&layout_, &source) < 0) {
        throw decoderError(outOfMemoryError);
    }
    if (layout_.order == AV_CHANNEL_ORDER_UNSPEC) {
        av_channel_layout_default(&layout_, source.nb_channels);
    }
}

bool ChannelLayout::isSameAs(const ChannelLayout& other) const noexcept
{
    return av_channel_layout_compare(&layout_, &other.layout_) == 0;
}

PlatformError decoderError(int errorNumber)
{
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text = {};
    av_strerror(errorNumber, text.data(), text.size());
    return PlatformError(text.data());
}

PlatformError openingError(int errorNumber)
{
    const bool isDamage = errorNumber == outOfMemoryError && hasAmpleMemory();
    return decoderError(isDamage ? invalidDataError : errorNumber);
}

UniquePacket makePacket()
{
    return orOutOfMemory(UniquePacket(av_packet_alloc()));
}

UniqueFrame makeFrame()
{
    return orOutOfMemory(UniqueFrame(av_frame_alloc()));
}

UniqueCodecParameters makeCodecParameters()
{
    return orOutOfMemory(UniqueCodecParameters(avcodec_parameters_alloc()));
}

std::int64_t endDiscardOf(const std::uint8_t* data, std::size_t size) noexcept
{
    if (data == nullptr || size < 8) {
        return 0;
    }
    return data[4] | data[5] << 8 | data[6] << 16 | std::int64_t{data[7]} << 24;
}

int errorFromErrno(int errorNumber) noexcept
{
    return -errorNumber;  // what the library's own macro does on POSIX systems
}

void silenceDecoderLibraries()
{
    [[maybe_unused]] static const bool isQuiet = (av_log_set_level(AV_LOG_QUIET), true);
}

}  // namespace tonvale
