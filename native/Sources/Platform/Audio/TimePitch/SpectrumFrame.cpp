// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/TimePitch/SpectrumFrame.h"

namespace tonvale::timepitch {

SpectrumFrame::SpectrumFrame(unsigned channelCount, int binCount)
    : spectra(channelCount, binCount)
    , power(binCount)
    , spreadPower(binCount)
{
    peaks.reserve(static_cast<std::size_t>(binCount));
}

void SpectrumFrame::clear() noexcept
{
    spectra.clear();
    power.clear();
    spreadPower.clear();
    peaks.clear();
    dcEnd = 0;
}

FrameHistory::FrameHistory(unsigned channelCount, int binCount)
{
    frames_.reserve(capacity);
    for (std::int64_t index = 0; index < capacity; ++index) {
        frames_.emplace_back(channelCount, binCount);
    }
}

void FrameHistory::clear() noexcept
{
    for (SpectrumFrame& frame : frames_) {
        frame.clear();
    }
}

}  // namespace tonvale::timepitch
