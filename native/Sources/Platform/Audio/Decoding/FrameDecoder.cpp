// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/FrameDecoder.h"

#include <utility>

namespace tonvale {

namespace {

constexpr int maximumChannelCount = 64;  // AudioPCMBuffer takes no more

/// No coder makes blocks this long; a damaged header may ask for one.
constexpr std::int64_t maximumBlockFrames = std::int64_t{1} << 22;

/// The library's first choice for MP1 and MP2 works in integers and adds dither, whose state would
/// make the samples depend on what was decoded before.
const AVCodec* findDecoder(AVCodecID codec)
{
    const AVCodec* decoder = nullptr;
    if (codec == AV_CODEC_ID_MP1 || codec == AV_CODEC_ID_MP2) {
        decoder = avcodec_find_decoder_by_name(codec == AV_CODEC_ID_MP1 ? "mp1float" : "mp2float");
    }
    return decoder != nullptr ? decoder : avcodec_find_decoder(codec);
}

/// The library's own order is that of WAVE files, and so are its first 18 loudspeakers.
std::uint32_t channelMaskOf(const AVChannelLayout& layout)
{
    constexpr std::uint64_t loudspeakersOfWave = (1U << 18U) - 1;
    const bool isNative = layout.order == AV_CHANNEL_ORDER_NATIVE;
    return isNative && layout.u.mask <= loudspeakersOfWave
               ? static_cast<std::uint32_t>(layout.u.mask)
               : 0;
}

}  // namespace

FrameDecoder::FrameDecoder(const AVCodecParameters& parameters, AVRational tickDuration)
    : parameters_(makeCodecParameters())
    , tickDuration_(tickDuration)
    , frame_(makeFrame())
{
    const int result = avcodec_parameters_copy(parameters_.get(), &parameters);
    if (result < 0) {
        throw openingError(result);
    }
    restart();
}

void FrameDecoder::restart()
{
    const AVCodec* const decoder = findDecoder(parameters_->codec_id);
    if (decoder == nullptr) {
        throw decoderError(noDecoderError);
    }
    codec_.reset(avcodec_alloc_context3(decoder));
    if (!codec_) {
        throw decoderError(outOfMemoryError);
    }
    int result = avcodec_parameters_to_context(codec_.get(), parameters_.get());
    codec_->pkt_timebase = tickDuration_;
    codec_->max_samples = maximumBlockFrames * maximumChannelCount;
    codec_->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;  // MusicExtent trims, at both ends
    if (result >= 0) {
        result = avcodec_open2(codec_.get(), decoder, nullptr);
    }
    if (result < 0) {
        throw openingError(result);
    }
}

int FrameDecoder::send(const AVPacket& packet) noexcept
{
    return avcodec_send_packet(codec_.get(), &packet);
}

void FrameDecoder::sendEnd() noexcept
{
    avcodec_send_packet(codec_.get(), nullptr);
}

bool FrameDecoder::receive()
{
    while (avcodec_receive_frame(codec_.get(), frame_.get()) >= 0) {
        conversion_ = Conversion::pending;
        if (frame_->nb_samples <= 0 || frame_->ch_layout.nb_channels <= 0
            || frame_->ch_layout.nb_channels > maximumChannelCount || frame_->sample_rate <= 0) {
            continue;
        }
        if (format_.sampleRate == 0) {
            adoptFormat();
        }
        return true;
    }
    return false;
}

/// The length of a Vorbis packet depends on the packet before, which the library's Ogg reader
/// forgets at each page: it stamps the first packet of a page too late, and takes it for shorter
/// by as much. So a block of Vorbis is placed by its end, before the last packet of all was
/// shortened to that of the music; there one tick is one frame.
std::int64_t FrameDecoder::timeStamp() const noexcept
{
    const bool isVorbis = parameters_->codec_id == AV_CODEC_ID_VORBIS;
    if (!isVorbis || frame_->pts == noTimeStamp || frame_->pkt_duration <= 0) {
        return frame_->pts;
    }
    const AVFrameSideData* const skip =
        av_frame_get_side_data(frame_.get(), AV_FRAME_DATA_SKIP_SAMPLES);
    const std::int64_t discard = skip == nullptr ? 0 : endDiscardOf(skip->data, skip->size);
    return frame_->pts + frame_->pkt_duration + discard - frame_->nb_samples;
}

bool FrameDecoder::isAudible() const noexcept
{
    return frame_->sample_rate == format_.sampleRate;
}

std::span<const float> FrameDecoder::channel(std::uint32_t index)
{
    const auto frames = static_cast<std::size_t>(frame_->nb_samples);
    if (isAlreadyConverted()) {
        const auto* const plane = frame_->extended_data[index];
        return {reinterpret_cast<const float*>(plane), frames};
    }
    if (conversion_ == Conversion::pending) {
        conversion_ = convert() ? Conversion::done : Conversion::failed;
    }
    if (conversion_ == Conversion::failed) {
        return {};
    }
    return {converted_.data() + stride_ * index, frames};
}

void FrameDecoder::adoptFormat()
{
    format_ = {.sampleRate = frame_->sample_rate,
               .channelCount = frame_->ch_layout.nb_channels,
               .framesPerPacket = frame_->nb_samples,
               .channelMask = channelMaskOf(frame_->ch_layout)};
    layout_ = ChannelLayout(frame_->ch_layout);
}

bool FrameDecoder::adoptDeclaredFormat() noexcept
{
    if (parameters_->sample_rate <= 0 || parameters_->ch_layout.nb_channels <= 0) {
        return false;
    }
    format_ = {.sampleRate = parameters_->sample_rate,
               .channelCount = parameters_->ch_layout.nb_channels,
               .framesPerPacket = 0,
               .channelMask = channelMaskOf(parameters_->ch_layout)};
    return true;
}

bool FrameDecoder::isAlreadyConverted() const noexcept
{
    return frame_->format == AV_SAMPLE_FMT_FLTP
           && frame_->ch_layout.nb_channels == format_.channelCount;
}

bool FrameDecoder::convert()
{
    if (!prepareResampler()) {
        return false;
    }
    const auto frames = static_cast<std::size_t>(frame_->nb_samples);
    const auto channels = static_cast<std::size_t>(format_.channelCount);
    if (frames > stride_) {
        stride_ = frames;
        converted_.resize(stride_ * channels);
        planes_.resize(channels);
        for (std::size_t index = 0; index < channels; ++index) {
            planes_[index] = reinterpret_cast<std::uint8_t*>(converted_.data() + stride_ * index);
        }
    }
    auto** const input = const_cast<const std::uint8_t**>(frame_->extended_data);
    return swr_convert(resampler_.get(), planes_.data(), frame_->nb_samples, input,
                       frame_->nb_samples)
           == frame_->nb_samples;
}

/// Song files that change their sample format or channels midway are rare, so a new context is
/// made for each change.
bool FrameDecoder::prepareResampler()
{
    const auto inputFormat = static_cast<AVSampleFormat>(frame_->format);
    ChannelLayout inputLayout(frame_->ch_layout);
    if (resampler_ && inputFormat == resamplerFormat_ && inputLayout.isSameAs(resamplerLayout_)) {
        return true;
    }
    SwrContext* made = nullptr;
    int result =
        swr_alloc_set_opts2(&made, layout_.get(), AV_SAMPLE_FMT_FLTP, format_.sampleRate,
                            inputLayout.get(), inputFormat, format_.sampleRate, 0, nullptr);
    resampler_.reset(made);
    if (result >= 0) {
        result = swr_init(resampler_.get());
    }
    if (result < 0) {
        resampler_.reset();
        return false;
    }
    resamplerFormat_ = inputFormat;
    resamplerLayout_ = std::move(inputLayout);
    return true;
}

}  // namespace tonvale
