// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>

#include "Platform/Audio/TimePitch/CutFrame.h"

namespace tonvale::timepitch {

namespace {

constexpr double fadeSeconds = 0.0015;  // as the gate of the hit opens

}  // namespace

CutFrame::CutFrame(const LayerDesign& design, unsigned channelCount)
    : design_(design)
    , channelCount_(channelCount)
    , transform_(design)
    , fadeSamples_(fadeSeconds * design.geometry.sampleRate / design.geometry.decimation)
    , window_(design.geometry.decimatedSize())
    , power_(design.binCount)
    , spectra_(channelCount, design.binCount)
{
}

void CutFrame::reset() noexcept
{
    number_ = noFrame;
}

void CutFrame::analyse(std::int64_t number, Frames end, const InputHistory& input) noexcept
{
    if (number == number_ && end == end_) {
        return;
    }
    number_ = number;
    end_ = end;
    const LayerGeometry& layer = design_.geometry;
    const Frames start = number * layer.hop - layer.attack;
    computeWindow(end - start);
    power_.clear();
    for (unsigned channel = 0; channel < channelCount_; ++channel) {
        transform_.forward(input.at(channel, start / layer.decimation), window_.data(),
                           spectra_.real(channel), spectra_.imaginary(channel), power_.data());
    }
}

void CutFrame::computeWindow(Frames framesKept) noexcept
{
    const Array<float>& whole = design_.windows.analysis();
    const double end = static_cast<double>(framesKept) / design_.geometry.decimation;
    const auto size = static_cast<double>(whole.size());
    const auto untouched = static_cast<int>(std::clamp(end - fadeSamples_, 0.0, size));
    const auto silent = static_cast<int>(std::clamp(std::ceil(end), 0.0, size));
    std::copy_n(whole.data(), untouched, window_.data());
    for (int n = untouched; n < silent; ++n) {
        window_[n] = whole[n] * static_cast<float>(raisedCosine((end - n) / fadeSamples_));
    }
    std::fill(window_.data() + silent, window_.end(), 0.0F);
}

}  // namespace tonvale::timepitch
