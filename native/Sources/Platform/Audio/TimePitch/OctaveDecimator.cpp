// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/TimePitch/OctaveDecimator.h"
#include "Platform/Audio/TimePitch/KaiserWindow.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

namespace tonvale::timepitch {

OctaveDecimator::OctaveDecimator() : taps_(pairCount)
{
    constexpr double beta = 7.5;
    double sum = 0;
    for (int pair = 0; pair < pairCount; ++pair) {
        const double offset = 2 * pair + 1;
        const double tap =
            normalisedSinc(offset / 2) / 2 * kaiserWindow(offset / (reach + 1), beta);
        taps_[pair] = static_cast<float>(tap);
        sum += 2 * tap;
    }
    for (float& tap : taps_) {
        tap = static_cast<float>(tap * 0.5 / sum);  // DC exactly 1: half from the middle tap
    }
}

void OctaveDecimator::advance(const InputHistory& input, InputHistory& output) const noexcept
{
    const Frames end = floorDivide(input.end() - reach - 1, 2) + 1;
    const int count = static_cast<int>(end - output.end());
    if (count <= 0) {
        return;
    }
    for (unsigned channel = 0; channel < input.channelCount(); ++channel) {
        const float* first = input.at(channel, 2 * output.end() - reach) + reach;
        kernels::halfBandDecimate(first, taps_.data(), pairCount, count, output.tail(channel));
    }
    output.commit(count);
}

}  // namespace tonvale::timepitch
