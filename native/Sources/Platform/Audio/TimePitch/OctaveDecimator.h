// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/InputHistory.h"

namespace tonvale::timepitch {

/// Halves the sample rate with a linear-phase half-band filter; sample j of the output lies exactly
/// at sample 2 j of the input.
///
/// 19 taps, of which only the odd ones and the middle are not zero (a sinc of half the rate under a
/// Kaiser window): flat within 1e-4 up to 0.2 of the input rate, images of what lies there at
/// -75 dB or less. The layers need 0.1.
/// @thread WORKER
class OctaveDecimator {
public:
    OctaveDecimator();

    /// Input samples after its own place that an output sample needs.
    static constexpr int reach = 9;

    /// Appends to `output` all samples that `input` has enough frames for.
    void advance(const InputHistory& input, InputHistory& output) const noexcept;

private:
    static constexpr int pairCount = (reach + 1) / 2;
    Array<float> taps_;
};

}  // namespace tonvale::timepitch
