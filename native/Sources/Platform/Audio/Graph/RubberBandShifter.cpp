// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/RubberBandShifter.h"

#include "Platform/Foundation/Precondition.h"

#include <rubberband/RubberBandStretcher.h>

#include <algorithm>
#include <cmath>

namespace tonvale {

namespace {

using RubberBand::RubberBandStretcher;

/// The waveform depends on the block size, so there is one for every caller.
constexpr std::size_t blockFrames = 512;

std::unique_ptr<RubberBandStretcher> makeStretcher(const AudioFormat& format)
{
    // Finer is the engine with the better sound; channels together keeps the stereo image;
    // high consistency lets the pitch change at any time without a click.
    constexpr auto options = RubberBandStretcher::OptionProcessRealTime
                             | RubberBandStretcher::OptionEngineFiner
                             | RubberBandStretcher::OptionChannelsTogether
                             | RubberBandStretcher::OptionPitchHighConsistency;
    auto stretcher = std::make_unique<RubberBandStretcher>(
        static_cast<std::size_t>(format.sampleRate), format.channelCount, options);
    stretcher->setDebugLevel(0);
    stretcher->setMaxProcessSize(blockFrames);
    return stretcher;
}

/// The library answers within start pad + start pad / pitch ratio (measured at 8 to 192 kHz), so
/// at most three pads for an octave down; a block more for the input that waits to be whole, and
/// one for the library's own rounding.
std::uint32_t latencyOf(const RubberBandStretcher& stretcher)
{
    return static_cast<std::uint32_t>(3 * stretcher.getPreferredStartPad() + 2 * blockFrames);
}

std::vector<float*> pointersTo(std::vector<std::vector<float>>& channels, std::size_t offset)
{
    std::vector<float*> pointers;
    pointers.reserve(channels.size());
    for (auto& channel : channels) {
        pointers.push_back(channel.data() + offset);
    }
    return pointers;
}

}  // namespace

RubberBandShifter::RubberBandShifter(const AudioFormat& format)
    : stretcher_(makeStretcher(format))
    , latency_(latencyOf(*stretcher_))
    , block_(format.channelCount, std::vector<float>(blockFrames))
    , shifted_(format.channelCount, std::vector<float>(latency_))
    , shiftedFill_(latency_)
{
}

RubberBandShifter::~RubberBandShifter() = default;

void RubberBandShifter::setPitch(float cents)
{
    stretcher_->setPitchScale(std::exp2(double{cents} / 1200.0));
}

void RubberBandShifter::process(AudioPCMBuffer& buffer)
{
    if (!isStarted_) {
        start();
    }
    for (std::uint32_t frame = 0; frame < buffer.frameLength();) {
        const auto count = static_cast<std::uint32_t>(
            std::min<std::size_t>(buffer.frameLength() - frame, blockFrames - blockFill_));
        for (std::uint32_t channel = 0; channel < block_.size(); ++channel) {
            std::ranges::copy(buffer.channel(channel).subspan(frame, count),
                              block_[channel].begin() + static_cast<std::ptrdiff_t>(blockFill_));
        }
        frame += count;
        blockFill_ += count;
        if (blockFill_ == blockFrames) {
            shiftBlock();
        }
    }
    takeOutput(buffer);
}

/// The library wants silence before the music and drops its own delay from the result; both
/// depend on the pitch that the stream starts with.
void RubberBandShifter::start()
{
    isStarted_ = true;
    framesToDrop_ = stretcher_->getStartDelay();
    for (std::size_t pad = stretcher_->getPreferredStartPad(); pad > 0;) {
        const std::size_t frames = std::min(pad, blockFrames);
        stretcher_->process(pointersTo(block_, 0).data(), frames, false);
        pad -= frames;
        collect();
    }
}

void RubberBandShifter::shiftBlock()
{
    stretcher_->process(pointersTo(block_, 0).data(), blockFrames, false);
    blockFill_ = 0;
    collect();
}

void RubberBandShifter::collect()
{
    for (int available = stretcher_->available(); available > 0;
         available = stretcher_->available()) {
        const auto frames = static_cast<std::size_t>(available);
        for (auto& channel : shifted_) {
            channel.resize(std::max(channel.size(), shiftedFill_ + frames));
        }
        const std::size_t retrieved =
            stretcher_->retrieve(pointersTo(shifted_, shiftedFill_).data(), frames);
        const std::size_t dropped = std::min(framesToDrop_, retrieved);
        for (auto& channel : shifted_) {
            const auto first = channel.begin() + static_cast<std::ptrdiff_t>(shiftedFill_);
            std::copy(first + static_cast<std::ptrdiff_t>(dropped),
                      first + static_cast<std::ptrdiff_t>(retrieved), first);
        }
        framesToDrop_ -= dropped;
        shiftedFill_ += retrieved - dropped;
    }
}

void RubberBandShifter::takeOutput(AudioPCMBuffer& buffer)
{
    const std::size_t frames = buffer.frameLength();
    precondition(frames <= shiftedFill_);
    for (std::uint32_t channel = 0; channel < shifted_.size(); ++channel) {
        auto& queue = shifted_[channel];
        const auto rest = queue.begin() + static_cast<std::ptrdiff_t>(frames);
        std::copy(queue.begin(), rest, buffer.channel(channel).begin());
        std::copy(rest, queue.begin() + static_cast<std::ptrdiff_t>(shiftedFill_), queue.begin());
    }
    shiftedFill_ -= frames;
}

}  // namespace tonvale
