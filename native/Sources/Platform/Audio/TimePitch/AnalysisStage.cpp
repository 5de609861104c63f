// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <bit>

#include "Platform/Audio/TimePitch/AnalysisStage.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

namespace tonvale::timepitch {

namespace {

int octavesOf(int decimation)
{
    return std::countr_zero(static_cast<unsigned>(decimation));
}

}  // namespace

AnalysisStage::AnalysisStage(const Geometry& geometry, std::span<const LayerDesign> designs,
                             unsigned channelCount)
    : geometry_(geometry)
{
    constexpr int margin = 8 * OctaveDecimator::reach;  // what the chain of filters is late by
    int octaves = 0;
    for (const LayerGeometry& layer : geometry.layers) {
        octaves = std::max(octaves, octavesOf(layer.decimation));
    }
    for (int octave = 0; octave <= octaves; ++octave) {
        octaves_.emplace_back(channelCount, (geometry.longestWindow >> octave) + margin,
                              (geometry.block >> octave) + margin + kernels::overrun);
    }
    layers_.reserve(designs.size());
    for (const LayerDesign& design : designs) {
        layers_.emplace_back(design, channelCount);
    }
}

void AnalysisStage::reset() noexcept
{
    for (InputHistory& octave : octaves_) {
        octave.clear();
    }
    for (LayerAnalysis& layer : layers_) {
        layer.reset();
    }
}

const InputHistory& AnalysisStage::inputOf(const LayerGeometry& layer) const noexcept
{
    return octaves_[static_cast<std::size_t>(octavesOf(layer.decimation))];
}

void AnalysisStage::begin(const float* const* channels) noexcept
{
    InputHistory& input = octaves_.front();
    for (unsigned channel = 0; channel < input.channelCount(); ++channel) {
        std::copy_n(channels[channel], geometry_.block, input.tail(channel));
    }
    input.commit(geometry_.block);
    for (std::size_t octave = 1; octave < octaves_.size(); ++octave) {
        decimator_.advance(octaves_[octave - 1], octaves_[octave]);
    }
    analyse(false);
}

void AnalysisStage::finish() noexcept
{
    analyse(true);
}

/// Analyses the frames that the last block completed, in those layers that can wait or in the
/// others.
void AnalysisStage::analyse(bool waiting) noexcept
{
    for (std::size_t index = 0; index < layers_.size(); ++index) {
        const LayerGeometry& layer = geometry_.layers[index];
        const Frames reference = octaves_.front().end() - layer.release;
        if (geometry_.canWait(layer) == waiting && reference % layer.hop == 0) {
            layers_[index].analyse(reference / layer.hop, inputOf(layer));
        }
    }
}

}  // namespace tonvale::timepitch
