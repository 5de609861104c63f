// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/TimePitch/FrameParts.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

namespace tonvale::timepitch {

FrameParts::FrameParts(const LayerDesign& design, unsigned channelCount)
    : design_(design)
    , channelCount_(channelCount)
    , split_(design)
    , beforeCurrent_(design, channelCount)
    , beforeNext_(design, channelCount)
    , oldWeights_(design.binCount)
    , newWeights_(design.binCount)
{
}

void FrameParts::reset() noexcept
{
    beforeCurrent_.reset();
    beforeNext_.reset();
}

void FrameParts::cut(std::int64_t number, const OnsetContext& onsets,
                     const InputHistory& input) noexcept
{
    if (onsets.current != nullptr) {
        beforeCurrent_.analyse(number, onsets.current->position, input);
    }
    if (onsets.next != nullptr) {
        beforeNext_.analyse(number, onsets.next->position, input);
    }
}

void FrameParts::divide(const FrameHistory& frames, std::int64_t number, const OnsetContext& onsets,
                        const Array<float>& weights, const InputHistory& input) noexcept
{
    onsets_ = onsets;
    weights_ = &weights;
    split_.update(frames, number, onsets);
    if (split_.isSplit()) {
        cut(number, onsets, input);
        const int count = design_.binCount;
        kernels::multiply(weights.data(), split_.oldShare().data(), count, oldWeights_.data());
        kernels::multiply(weights.data(), split_.newShare().data(), count, newWeights_.data());
    }
}

void FrameParts::makeSustained(const SpectrumFrame& frame, ChannelSpectra& out) const noexcept
{
    if (!split_.isSplit()) {
        weigh(frame.spectra, *weights_, kernels::multiply, out);
        return;
    }
    const CutFrame& before = onsets_.current != nullptr ? beforeCurrent_ : beforeNext_;
    weigh(frame.spectra, oldWeights_, kernels::multiply, out);
    weigh(before.spectra(), newWeights_, kernels::multiplyAdd, out);
}

void FrameParts::makeHit(const SpectrumFrame& frame, ChannelSpectra& out) const noexcept
{
    const ChannelSpectra& whole = onsets_.next != nullptr ? beforeNext_.spectra() : frame.spectra;
    weigh(whole, newWeights_, kernels::multiply, out);
    weigh(beforeCurrent_.spectra(), newWeights_, kernels::multiplySubtract, out);
}

void FrameParts::weigh(const ChannelSpectra& spectra, const Array<float>& weights, Combine combine,
                       ChannelSpectra& out) const noexcept
{
    const int begin = design_.carriesDc() ? 0 : design_.activeBegin;
    const int count = design_.activeEnd - begin;
    const float* factors = weights.data() + begin;
    for (unsigned channel = 0; channel < channelCount_; ++channel) {
        combine(spectra.real(channel) + begin, factors, count, out.real(channel) + begin);
        combine(spectra.imaginary(channel) + begin, factors, count, out.imaginary(channel) + begin);
    }
}

}  // namespace tonvale::timepitch
