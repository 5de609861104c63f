// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/RateConverter.h"

#include "Platform/Audio/Decoding/FFmpeg.h"
#include "Platform/Foundation/Precondition.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace tonvale {

namespace {

constexpr std::size_t sides = 2;

/// Taps of the filter at the lower of both rates: flat to 0.9 of its Nyquist frequency.
constexpr std::uint32_t filterSize = 64;

std::uint32_t wholeRate(double rate) noexcept
{
    precondition(rate >= 1 && rate <= 1e9);
    return static_cast<std::uint32_t>(std::lround(rate));
}

void check(int result)
{
    if (result < 0) {
        throw decoderError(result);
    }
}

}  // namespace

void RateConverter::Deleter::operator()(SwrContext* context) const noexcept
{
    swr_free(&context);
}

RateConverter::RateConverter(double sourceRate, double targetRate, std::uint32_t maximumFrameCount)
    : maximumFrameCount_(maximumFrameCount)
{
    const std::uint32_t source = wholeRate(sourceRate);
    const std::uint32_t target = wholeRate(targetRate);
    const std::uint32_t common = std::gcd(source, target);
    inputStep_ = source / common;
    outputStep_ = target / common;
    memory_ = filterSize * std::max(1U, (source + target - 1) / target);
    const std::uint64_t mostInput = std::uint64_t{maximumFrameCount} + memory_;
    maximumOutput_ = static_cast<std::uint32_t>(mostInput * target / source + 2);
    silence_.resize(std::max(memory_, maximumFrameCount));
    // Twice: finish() may find more than it gives away.
    output_.resize(2 * sides * std::size_t{maximumOutput_});
    makeContext(source, target);
    reset();
}

RateConverter::~RateConverter() = default;

void RateConverter::makeContext(std::uint32_t sourceRate, std::uint32_t targetRate)
{
    AVChannelLayout stereo = {};
    av_channel_layout_default(&stereo, sides);
    SwrContext* made = nullptr;
    check(swr_alloc_set_opts2(&made, &stereo, AV_SAMPLE_FMT_FLT, static_cast<int>(targetRate),
                              &stereo, AV_SAMPLE_FMT_FLTP, static_cast<int>(sourceRate), 0,
                              nullptr));
    context_.reset(made);
    check(av_opt_set_int(made, "filter_size", filterSize, 0));
}

void RateConverter::reset()
{
    check(swr_init(context_.get()));
    framesTaken_ = 0;
    framesGiven_ = 0;
    // Silence of a length that becomes a whole number of frames; else the converter would take the
    // music's first frames, mirrored, for what lies before it.
    const std::uint64_t steps = (memory_ + inputStep_ - 1) / inputStep_;
    framesToDrop_ = steps * outputStep_;
    feedSilence(steps * inputStep_);
}

std::span<const float> RateConverter::convert(const Sides& in)
{
    precondition(in[0].size() <= maximumFrameCount_ && in[1].size() == in[0].size());
    outputFrames_ = 0;
    resample(in);
    framesTaken_ += in[0].size();
    framesGiven_ += outputFrames_;
    return std::span(output_).first(sides * outputFrames_);
}

std::span<const float> RateConverter::finish()
{
    const std::uint64_t due = (framesTaken_ * outputStep_ + inputStep_ - 1) / inputStep_;
    const auto missing = static_cast<std::size_t>(due - std::min(due, framesGiven_));
    outputFrames_ = 0;
    resample({std::span(silence_).first(memory_), std::span(silence_).first(memory_)});
    precondition(outputFrames_ >= missing);
    framesGiven_ += missing;
    return std::span(output_).first(sides * missing);
}

void RateConverter::feedSilence(std::uint64_t frames)
{
    while (frames > 0) {
        const auto count = std::min<std::uint64_t>(frames, maximumFrameCount_);
        const auto silence = std::span(silence_).first(static_cast<std::size_t>(count));
        outputFrames_ = 0;
        resample({silence, silence});
        frames -= count;
    }
}

void RateConverter::resample(const Sides& in)
{
    const std::array<const std::uint8_t*, sides> planes{
        reinterpret_cast<const std::uint8_t*>(in[0].data()),
        reinterpret_cast<const std::uint8_t*>(in[1].data())};
    std::array<std::uint8_t*, 1> out{reinterpret_cast<std::uint8_t*>(output_.data())};
    const auto room = static_cast<int>(output_.size() / sides);
    const int made = swr_convert(context_.get(), out.data(), room,
                                 const_cast<const std::uint8_t**>(planes.data()),
                                 static_cast<int>(in[0].size()));
    check(made);
    const auto dropped = std::min<std::uint64_t>(framesToDrop_, static_cast<std::uint64_t>(made));
    framesToDrop_ -= dropped;
    outputFrames_ = static_cast<std::size_t>(made) - static_cast<std::size_t>(dropped);
    std::copy(output_.begin() + static_cast<std::ptrdiff_t>(sides * dropped),
              output_.begin()
                  + static_cast<std::ptrdiff_t>(sides * static_cast<std::uint64_t>(made)),
              output_.begin());
}

}  // namespace tonvale
