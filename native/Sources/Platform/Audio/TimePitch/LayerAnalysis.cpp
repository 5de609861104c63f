// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/TimePitch/LayerAnalysis.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

namespace tonvale::timepitch {

LayerAnalysis::LayerAnalysis(const LayerDesign& design, unsigned channelCount)
    : design_(design)
    , channelCount_(channelCount)
    , transform_(design)
    , tracker_(design, channelCount)
    , frames_(channelCount, design.binCount)
{
}

void LayerAnalysis::analyse(std::int64_t number, const InputHistory& input) noexcept
{
    const LayerGeometry& geometry = design_.geometry;
    SpectrumFrame& frame = frames_.at(number);
    const Frames start = (number * geometry.hop - geometry.attack) / geometry.decimation;
    frame.power.clear();
    for (unsigned channel = 0; channel < channelCount_; ++channel) {
        transform_.forward(input.at(channel, start), design_.windows.analysis().data(),
                           frame.spectra.real(channel), frame.spectra.imaginary(channel),
                           frame.power.data());
    }
    const Array<float>& power = frame.power;
    const int last = design_.binCount - 1;
    kernels::sumOfThree(power.data(), design_.binCount, frame.spreadPower.data());
    frame.spreadPower[0] = power[0] + power[1];
    frame.spreadPower[last] = power[last] + power[last - 1];
    tracker_.find(frame);
    tracker_.link(frames_.at(number - 1), frame);
}

}  // namespace tonvale::timepitch
