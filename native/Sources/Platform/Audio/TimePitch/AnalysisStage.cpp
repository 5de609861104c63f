// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/TimePitch/AnalysisStage.h"

namespace tonvale::timepitch {

AnalysisStage::AnalysisStage(const Geometry& geometry, std::span<const LayerDesign> designs,
                             unsigned channelCount)
    : geometry_(geometry)
    , input_(geometry, channelCount, geometry.longestWindow)
{
    layers_.reserve(designs.size());
    for (const LayerDesign& design : designs) {
        layers_.emplace_back(design, channelCount);
    }
}

void AnalysisStage::reset() noexcept
{
    input_.clear();
    for (LayerAnalysis& layer : layers_) {
        layer.reset();
    }
}

void AnalysisStage::begin(const float* const* channels) noexcept
{
    input_.advance(channels);
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
        const Frames reference = input_.end() - layer.release;
        if (geometry_.canWait(layer) == waiting && reference % layer.hop == 0) {
            layers_[index].analyse(reference / layer.hop, input_.of(layer));
        }
    }
}

}  // namespace tonvale::timepitch
