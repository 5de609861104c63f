// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/ContainerSource.h"

#include "Platform/Audio/Decoding/ContainerExtent.h"
#include "Platform/Audio/Decoding/FormatProbe.h"
#include "Platform/Audio/Decoding/LocalInput.h"
#include "Platform/Audio/Decoding/PacketDuration.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace tonvale {

namespace {

constexpr int maximumStreams = 64;

/// How much earlier a seek is tried again when it landed behind its target, in seconds.
constexpr std::array<int, 3> seekMargins = {0, 2, 20};

bool isLinear(const AVCodecParameters& parameters)
{
    return parameters.codec_id >= AV_CODEC_ID_FIRST_AUDIO
           && parameters.codec_id < AV_CODEC_ID_ADPCM_IMA_QT
           && av_get_exact_bits_per_sample(parameters.codec_id) >= 8;
}

/// Decoders of which CodecMemory knows how far back they remember.
bool hasKnownMemory(const AVCodecParameters& parameters)
{
    constexpr std::array known = {AV_CODEC_ID_MP3,     AV_CODEC_ID_AAC,    AV_CODEC_ID_ALAC,
                                  AV_CODEC_ID_FLAC,    AV_CODEC_ID_VORBIS, AV_CODEC_ID_OPUS,
                                  AV_CODEC_ID_WAVPACK, AV_CODEC_ID_TTA};
    return isLinear(parameters) || std::ranges::find(known, parameters.codec_id) != known.end();
}

int frameSizeOf(const AVCodecParameters& parameters)
{
    return parameters.ch_layout.nb_channels * av_get_exact_bits_per_sample(parameters.codec_id) / 8;
}

int refuseToOpen(AVFormatContext* /*context*/, AVIOContext** /*io*/, const char* /*url*/,
                 int /*flags*/, AVDictionary** /*options*/)
{
    return refusedError;
}

/// Options of the library and, last, of its MOV demuxer: the edit list is ours to read.
AVDictionary* makeOptions()
{
    AVDictionary* options = nullptr;
    av_dict_set(&options, "format_whitelist", containersOfMusic(), 0);
    av_dict_set(&options, "protocol_whitelist", "none", 0);  // no protocol has this name
    av_dict_set_int(&options, "max_streams", maximumStreams, 0);
    av_dict_set(&options, "ignore_editlist", "1", 0);
    return options;
}

}  // namespace

ContainerSource::ContainerSource(LocalInput& input, const AVInputFormat& format)
    : input_(input)
    , format_(format)
    , pending_(makePacket())
{
    open(DiskFailures::areTold);
}

const AVCodecParameters& ContainerSource::parameters() const noexcept
{
    return *stream().codecpar;
}

AVRational ContainerSource::tickDuration() const noexcept
{
    return stamping_ == Stamping::byBytes ? AVRational{1, parameters().sample_rate}
                                          : stream().time_base;
}

bool ContainerSource::hasExactStamps() const noexcept
{
    return stamping_ != Stamping::none;
}

bool ContainerSource::next(AVPacket& packet)
{
    if (hasPending_) {
        hasPending_ = false;
        av_packet_unref(&packet);
        av_packet_move_ref(&packet, pending_.get());
        return true;
    }
    return readPacket(packet);
}

void ContainerSource::seek(std::int64_t tick)
{
    for (const int margin : seekMargins) {
        const auto ticks = av_rescale_q(margin, AVRational{1, 1}, tickDuration());
        if (landsBefore(tick - ticks, tick)) {
            return;
        }
    }
    rewind();
}

void ContainerSource::rewind()
{
    open(DiskFailures::areTold);
}

void ContainerSource::recover()
{
    input_.forgetFailure();
    open(DiskFailures::areForgotten);
    input_.forgetFailure();
}

MusicExtent ContainerSource::extent(const DecodedFormat& format)
{
    const ContainerFacts facts = {.input = input_,
                                  .format = format_,
                                  .context = context_.get(),
                                  .stream = stream(),
                                  .tickDuration = tickDuration(),
                                  .isLinear = stamping_ == Stamping::byBytes,
                                  .dataOffset = dataOffset_,
                                  .frameSize = frameSize_,
                                  .duration = dataDuration_};
    const HeaderExtent header = headerExtent(facts, format);
    std::int64_t end = 0;
    if (header.end) {
        end = checkedEnd(*header.end, format);
    } else {
        rewind();
        end = scanForEnd(*this, input_.size(), format);
    }
    return {.start = header.start, .length = std::max<std::int64_t>(end - header.start, 0)};
}

/// What the header tells, held against the last packet where that is worth a seek. Tables of ALAC
/// may count the last packet as full; the packet itself knows better. Elsewhere only whole seconds
/// of nothing count as damage: a last packet that cannot be found is no reason to cut music.
std::int64_t ContainerSource::checkedEnd(std::int64_t end, const DecodedFormat& format)
{
    const bool isAlac = parameters().codec_id == AV_CODEC_ID_ALAC;
    if (end <= 0 || stamping_ != Stamping::byContainer || (!isAlac && !looksTooLong(end, format))) {
        return end;
    }
    seek(av_rescale_q(end - 1, AVRational{1, format.sampleRate}, tickDuration()));
    const std::int64_t lastEnd = scanForEnd(*this, input_.size(), format);
    const std::int64_t slack = isAlac ? 0 : format.sampleRate;
    return lastEnd > 0 && end - lastEnd > slack ? lastEnd : end;
}

/// Whether the header's length leaves far fewer bytes to a second than the one that comes next,
/// near the start. Only where nothing but the header tells the length; other containers have it
/// from their tables and pages.
bool ContainerSource::looksTooLong(std::int64_t end, const DecodedFormat& format)
{
    if (!isOneOf(format_, {"flac", "caf", "wv", "tta"})) {
        return false;
    }
    const UniquePacket packet = makePacket();
    const double ticksPerSecond = 1.0 / av_q2d(tickDuration());
    double ticks = 0;
    double bytes = 0;
    while (ticks < ticksPerSecond && next(*packet)) {
        ticks += static_cast<double>(durationOf(*packet));
        bytes += packet->size;
    }
    const double seconds = static_cast<double>(end) / format.sampleRate;
    const double told = static_cast<double>(input_.size() - dataOffset_) / seconds;
    return ticks > 0 && 2 * told < bytes / ticks * ticksPerSecond;
}

/// A new context for every start from the beginning: demuxers keep much of what they have read,
/// and not every one finds back to its first packet. Where opening fails, the former context still
/// tells of the stream; it is good for nothing else.
void ContainerSource::open(DiskFailures failures)
{
    UniqueIOContext io = input_.makeContext();
    hasPending_ = false;
    runningTick_ = noTimeStamp;
    packetBudget_ = input_.size() + 1000;  // a packet has a byte at least, but for a few
    AVFormatContext* context = avformat_alloc_context();
    if (context == nullptr) {
        throw decoderError(outOfMemoryError);
    }
    context->pb = io.get();
    context->io_open = &refuseToOpen;
    if (isNamed(format_, "ogg")) {
        // After a seek the library would invent the time stamps that a page does not give.
        context->flags |= AVFMT_FLAG_NOFILLIN;
    }
    AVDictionary* options = makeOptions();
    const int result = avformat_open_input(&context, input_.name().c_str(), &format_, &options);
    UniqueFormatContext opened(context);  // nothing when it failed
    av_dict_free(&options);
    const std::int64_t dataOffset = avio_tell(io.get());
    const int best = result < 0 ? result : findMusic(*opened);
    if (best < 0 || failures == DiskFailures::areTold) {
        input_.throwIfFailed();
    }
    if (result < 0) {
        throw openingError(result);
    }
    if (best < 0) {
        throw PlatformError("The file holds no sound");
    }
    context_ = std::move(opened);
    io_ = std::move(io);
    dataOffset_ = dataOffset;
    chooseStream(best);
}

/// @return the number of its stream, or less than 0
int ContainerSource::findMusic(AVFormatContext& context)
{
    const auto best = [&context] {
        return av_find_best_stream(&context, AVMEDIA_TYPE_AUDIO, -1, -1, nullptr, 0);
    };
    if (const int found = best(); found >= 0) {
        return found;
    }
    // Some containers have no table of streams: the library has to look at packets.
    avformat_find_stream_info(&context, nullptr);
    return best();
}

void ContainerSource::chooseStream(int best)
{
    streamIndex_ = best;
    for (int index = 0; index < static_cast<int>(context_->nb_streams); ++index) {
        context_->streams[index]->discard = index == best ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
    stamping_ = stampingOf(stream());
    frameSize_ = stamping_ == Stamping::byBytes ? frameSizeOf(parameters()) : 0;
    dataDuration_ = stream().duration;
}

ContainerSource::Stamping ContainerSource::stampingOf(const AVStream& stream) const
{
    const AVCodecParameters& parameters = *stream.codecpar;
    if (isLinear(parameters) && frameSizeOf(parameters) > 0 && parameters.sample_rate > 0
        && isOneOf(format_, {"wav", "w64", "aiff", "au", "caf"})) {
        return Stamping::byBytes;
    }
    const bool countsFrames = isOneOf(format_, {"flac", "ogg", "caf", "wv", "tta"})
                              || (isNamed(format_, "mov") && hasFrameTimeBase(stream));
    return countsFrames && hasKnownMemory(parameters) ? Stamping::byContainer : Stamping::none;
}

/// A time base in which every packet of AAC or ALAC begins on a whole tick.
bool ContainerSource::hasFrameTimeBase(const AVStream& stream) const
{
    const int rate = stream.codecpar->sample_rate;
    const AVRational base = stream.time_base;
    return base.num == 1 && rate > 0 && (base.den % rate == 0 || rate % base.den == 0)
           && base.den >= rate / 2;
}

bool ContainerSource::readPacket(AVPacket& packet)
{
    while (packetBudget_-- > 0) {
        av_packet_unref(&packet);
        const int result = av_read_frame(context_.get(), &packet);
        input_.throwIfFailed();
        if (result == tryAgainError) {
            continue;
        }
        if (result < 0) {
            return false;
        }
        if (packet.stream_index == streamIndex_) {
            stamp(packet);
            return true;
        }
    }
    return false;
}

void ContainerSource::stamp(AVPacket& packet)
{
    switch (stamping_) {
    case Stamping::byBytes:
        packet.pts = (packet.pos - dataOffset_) / frameSize_;
        break;
    case Stamping::byContainer:
        if (packet.pts == noTimeStamp) {
            packet.pts = runningTick_;
        }
        if (packet.pts != noTimeStamp) {
            runningTick_ = packet.pts + durationOf(packet);
        }
        break;
    case Stamping::none:
        packet.pts = noTimeStamp;
        break;
    }
}

/// In ticks; Ogg leaves that of FLAC packets open.
std::int64_t ContainerSource::durationOf(const AVPacket& packet) const
{
    return packet.duration > 0 ? packet.duration : framesOfPacket(parameters(), packet);
}

/// Seeks to `tick` and looks at the packet found there.
bool ContainerSource::landsBefore(std::int64_t tick, std::int64_t target)
{
    const bool isByBytes = stamping_ == Stamping::byBytes;
    const std::int64_t place =
        isByBytes ? dataOffset_ + std::max<std::int64_t>(tick, 0) * frameSize_ : tick;
    const int flags = isByBytes ? AVSEEK_FLAG_BYTE : AVSEEK_FLAG_BACKWARD;
    hasPending_ = false;
    runningTick_ = noTimeStamp;
    packetBudget_ = input_.size() + 1000;
    if (av_seek_frame(context_.get(), streamIndex_, place, flags) < 0) {
        return false;
    }
    while (readPacket(*pending_)) {
        if (pending_->pts != noTimeStamp) {
            hasPending_ = pending_->pts <= target;
            return hasPending_;
        }
    }
    return false;
}

const AVStream& ContainerSource::stream() const noexcept
{
    return *context_->streams[streamIndex_];
}

}  // namespace tonvale
