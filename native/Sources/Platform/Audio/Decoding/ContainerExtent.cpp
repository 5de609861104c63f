// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/ContainerExtent.h"

#include "Platform/Audio/Decoding/CafPacketInfo.h"
#include "Platform/Audio/Decoding/FormatProbe.h"
#include "Platform/Audio/Decoding/LocalInput.h"
#include "Platform/Audio/Decoding/Mp4Timing.h"
#include "Platform/Audio/Decoding/PacketDuration.h"
#include "Platform/Audio/Decoding/PacketSource.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace tonvale {

namespace {

/// Below this many bytes a second no real song lies: even silence in FLAC takes 150.
constexpr std::int64_t fewestBytesPerSecond = 100;

/// Far beyond every song, and a few of them can be added without overflow.
constexpr std::int64_t farAway = std::int64_t{1} << 60;

std::int64_t bounded(std::int64_t count)
{
    return std::clamp(count, -farAway, farAway);
}

/// A damaged header may give any number of ticks; those whose frames cannot be counted end up
/// at -farAway, as the library's answer to an overflow is the smallest number.
std::int64_t toFrames(std::int64_t ticks, AVRational tickDuration, const DecodedFormat& format)
{
    return bounded(av_rescale_q(ticks, tickDuration, AVRational{1, format.sampleRate}));
}

std::optional<std::int64_t> known(std::int64_t count)
{
    return count > 0 ? std::optional(count) : std::nullopt;
}

/// W64 files end on a multiple of 8 bytes, which only the size in their data chunk's header tells
/// from music: 16 bytes of identifier, 8 of size, this header included.
std::int64_t bytesOfW64Data(const ContainerFacts& facts)
{
    constexpr std::int64_t headerSize = 24;
    std::array<std::uint8_t, headerSize> header = {};
    facts.input.readAt(facts.dataOffset - headerSize, header);
    std::uint64_t size = 0;
    for (std::size_t index = headerSize; index > headerSize - 8; --index) {
        size = size << 8U | header[index - 1];
    }
    return static_cast<std::int64_t>(std::min(size, std::uint64_t{1} << 60U)) - headerSize;
}

/// The header's length, but never more than the bytes that are there: files get cut, and
/// writers of streams leave the length open.
std::int64_t linearFrames(const ContainerFacts& facts)
{
    std::int64_t bytes = std::max<std::int64_t>(facts.input.size() - facts.dataOffset, 0);
    if (isNamed(facts.format, "w64")) {
        bytes = std::clamp<std::int64_t>(bytesOfW64Data(facts), 0, bytes);
    }
    const std::int64_t present = bytes / facts.frameSize;
    const auto told = known(facts.duration).value_or(facts.stream.nb_frames);
    return told > 0 ? std::min(told, present) : present;
}

struct Padding {
    unsigned start = 0;        ///< frames
    std::uint64_t length = 0;  ///< frames of music
};

/// The padding as one family of encoders writes it, in hexadecimal text.
std::optional<Padding> paddingFromText(const AVStream& stream, const AVFormatContext* context)
{
    const AVDictionaryEntry* entry = av_dict_get(stream.metadata, "iTunSMPB", nullptr, 0);
    if (entry == nullptr && context != nullptr) {
        entry = av_dict_get(context->metadata, "iTunSMPB", nullptr, 0);
    }
    Padding padding;
    unsigned long long length = 0;
    if (entry == nullptr
        || std::sscanf(entry->value, "%*x %x %*x %llx", &padding.start, &length) != 2
        || padding.start > 65536 || length == 0 || length > 1ULL << 40U) {
        return std::nullopt;
    }
    padding.length = length;
    return padding;
}

/// The edit list decides where the music starts and ends. Its duration counts in ticks of the
/// movie, often milliseconds, so where the media ends less than one such tick from there, the
/// media's own end is meant.
HeaderExtent mp4Extent(const ContainerFacts& facts, const DecodedFormat& format)
{
    HeaderExtent extent;
    const auto mediaEnd = known(facts.duration);
    if (mediaEnd) {
        extent.end = toFrames(*mediaEnd, facts.tickDuration, format);
    }
    const auto timing = Mp4Timing::parse(facts.input, static_cast<std::uint32_t>(facts.stream.id));
    const auto padding = paddingFromText(facts.stream, facts.context);
    const bool hasEdit = timing && timing->edit && timing->movieTicksPerSecond > 0;
    if (padding && (!hasEdit || timing->edit->mediaStart == padding->start)) {
        extent.start = padding->start;
        extent.end = extent.start + static_cast<std::int64_t>(padding->length);
    }
    if (!hasEdit) {
        return extent;
    }
    extent.start = toFrames(timing->edit->mediaStart, facts.tickDuration, format);
    if (timing->edit->duration > 0) {
        const std::int64_t movieTicks = timing->movieTicksPerSecond;
        const std::int64_t editEnd =
            extent.start
            + bounded(av_rescale(timing->edit->duration, format.sampleRate, movieTicks));
        const std::int64_t oneTick = (format.sampleRate - 1) / movieTicks + 1;
        if (!extent.end || *extent.end - editEnd >= std::max<std::int64_t>(oneTick, 2)) {
            extent.end = editEnd;
        }
    }
    return extent;
}

/// Granule positions count frames of music; those of Opus count its pre-skip, too.
HeaderExtent oggExtent(const ContainerFacts& facts, const DecodedFormat& format)
{
    const AVCodecParameters& parameters = *facts.stream.codecpar;
    const std::int64_t start = facts.stream.start_time == noTimeStamp ? 0 : facts.stream.start_time;
    HeaderExtent extent = {.start = toFrames(start, facts.tickDuration, format)};
    if (const auto duration = known(facts.duration)) {
        const std::int64_t skip =
            parameters.codec_id == AV_CODEC_ID_OPUS ? parameters.initial_padding : 0;
        const std::int64_t end = bounded(start) + bounded(*duration) - skip;
        extent.end = toFrames(end, facts.tickDuration, format);
    }
    return extent;
}

HeaderExtent cafExtent(const ContainerFacts& facts, const DecodedFormat& format)
{
    const auto info = CafPacketInfo::parse(facts.input);
    if (!info) {
        return {.end = known(toFrames(std::max<std::int64_t>(facts.duration, 0), facts.tickDuration,
                                      format))};
    }
    return {.start = toFrames(info->primingFrames, facts.tickDuration, format),
            .end = toFrames(info->primingFrames + info->validFrames, facts.tickDuration, format)};
}

/// The first block of WMA is decoded from half its data, so no encoder puts music there. How much
/// more the encoder added, the container does not say, and its length counts whole packets.
HeaderExtent asfExtent(const ContainerFacts& facts, const DecodedFormat& format)
{
    HeaderExtent extent;
    const AVCodecID codec = facts.stream.codecpar->codec_id;
    if (codec == AV_CODEC_ID_WMAV1 || codec == AV_CODEC_ID_WMAV2) {
        const bool isSlow = format.sampleRate <= 22050
                            || (format.sampleRate <= 32000 && codec == AV_CODEC_ID_WMAV1);
        extent.start = format.sampleRate <= 16000 ? 512 : (isSlow ? 1024 : 2048);
    }
    if (facts.duration > 0) {
        extent.end = extent.start + toFrames(facts.duration, facts.tickDuration, format);
    }
    return extent;
}

/// FLAC carries its own length into containers that count in milliseconds.
std::optional<std::int64_t> flacFrames(const AVCodecParameters& parameters)
{
    if (parameters.codec_id != AV_CODEC_ID_FLAC || parameters.extradata_size < 18) {
        return std::nullopt;
    }
    const std::uint8_t* const info = parameters.extradata;
    std::int64_t frames = info[13] & 0x0F;
    for (int index = 14; index < 18; ++index) {
        frames = frames << 8 | info[index];
    }
    return known(frames);
}

HeaderExtent anyExtent(const ContainerFacts& facts, const DecodedFormat& format)
{
    if (isNamed(facts.format, "mov")) {
        return mp4Extent(facts, format);
    }
    if (isNamed(facts.format, "ogg")) {
        return oggExtent(facts, format);
    }
    if (isNamed(facts.format, "caf")) {
        return cafExtent(facts, format);
    }
    if (const auto frames = flacFrames(*facts.stream.codecpar)) {
        return {.end = frames};
    }
    if (isNamed(facts.format, "asf")) {
        return asfExtent(facts, format);
    }
    if (isOneOf(facts.format, {"flac", "wv", "tta", "ape", "tak"}) && facts.duration > 0) {
        return {.end = toFrames(facts.duration, facts.tickDuration, format)};
    }
    const int padding = facts.stream.codecpar->initial_padding;
    return {.start = std::max(padding, 0)};
}

bool isCredible(std::int64_t frames, std::int64_t fileSize, const DecodedFormat& format)
{
    return frames >= 0 && frames / format.sampleRate <= fileSize / fewestBytesPerSecond + 1;
}

/// Frames to drop at the end, where a container marks its last packet so.
std::int64_t endDiscard(const AVPacket& packet)
{
    std::size_t size = 0;
    const std::uint8_t* const data =
        av_packet_get_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, &size);
    return endDiscardOf(data, size);
}

}  // namespace

HeaderExtent headerExtent(const ContainerFacts& facts, const DecodedFormat& format)
{
    if (facts.isLinear) {
        return {.end = linearFrames(facts)};
    }
    HeaderExtent extent = anyExtent(facts, format);
    if (extent.end && !isCredible(*extent.end, facts.input.size(), format)) {
        extent.end.reset();
    }
    if (!isCredible(extent.start, facts.input.size(), format)) {
        extent.start = 0;
    }
    return extent;
}

std::int64_t scanForEnd(PacketSource& source, std::int64_t fileSize, const DecodedFormat& format)
{
    PacketDuration durations(source.parameters(), format);
    const UniquePacket packet = makePacket();
    std::int64_t counted = 0;
    std::int64_t stamped = 0;
    std::int64_t discard = 0;
    while (source.next(*packet)) {
        const std::int64_t frames = durations.framesOf(*packet).value_or(
            toFrames(packet->duration, source.tickDuration(), format));
        counted = bounded(counted + frames);
        if (packet->pts != noTimeStamp) {
            const std::int64_t end = toFrames(packet->pts, source.tickDuration(), format) + frames;
            if (isCredible(end, fileSize, format)) {
                stamped = std::max(stamped, end);
            }
        }
        discard = endDiscard(*packet);
    }
    const std::int64_t end = source.hasExactStamps() ? stamped : counted;
    return std::max<std::int64_t>(end - discard, 0);
}

}  // namespace tonvale
