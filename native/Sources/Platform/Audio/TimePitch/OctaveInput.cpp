// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <bit>

#include "Platform/Audio/TimePitch/OctaveInput.h"

namespace tonvale::timepitch {

namespace {

int octavesOf(int decimation)
{
    return std::countr_zero(static_cast<unsigned>(decimation));
}

}  // namespace

OctaveInput::OctaveInput(const Geometry& geometry, unsigned channelCount, int keptFrames)
    : block_(geometry.block)
{
    constexpr int margin = 8 * OctaveDecimator::reach;  // what the chain of filters is late by
    int octaves = 0;
    for (const LayerGeometry& layer : geometry.layers) {
        octaves = std::max(octaves, octavesOf(layer.decimation));
    }
    octaves_.emplace_back(channelCount, keptFrames + margin, geometry.block);
    for (int octave = 1; octave <= octaves; ++octave) {
        octaves_.emplace_back(channelCount, (keptFrames >> octave) + margin,
                              (geometry.block >> octave) + margin, margin);
    }
}

void OctaveInput::clear() noexcept
{
    for (InputHistory& octave : octaves_) {
        octave.clear();
    }
}

void OctaveInput::advance(const float* const* channels) noexcept
{
    InputHistory& input = octaves_.front();
    for (unsigned channel = 0; channel < input.channelCount(); ++channel) {
        std::copy_n(channels[channel], block_, input.tail(channel));
    }
    input.commit(block_);
    for (std::size_t octave = 1; octave < octaves_.size(); ++octave) {
        decimator_.advance(octaves_[octave - 1], octaves_[octave]);
    }
}

const InputHistory& OctaveInput::of(const LayerGeometry& layer) const noexcept
{
    return octaves_[static_cast<std::size_t>(octavesOf(layer.decimation))];
}

}  // namespace tonvale::timepitch
