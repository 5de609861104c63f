// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>

#include "Platform/Audio/TimePitch/AnalysisStage.h"

namespace tonvale::timepitch {

namespace {

/// Frames before the newest block that somebody reads: the analysis, the cuts at onsets (a window
/// before what is being synthesised), the detector, the direct path.
int framesNeeded(const Geometry& geometry)
{
    return std::max({geometry.lookAhead + geometry.longestWindow, geometry.latency(),
                     OnsetDetector::framesNeeded(geometry)});
}

}  // namespace

AnalysisStage::AnalysisStage(const Geometry& geometry, std::span<const LayerDesign> designs,
                             unsigned channelCount, int lead)
    : geometry_(geometry)
    , input_(geometry, channelCount, framesNeeded(geometry) + (1 + lead) * geometry.block)
    , detector_(geometry, channelCount)
{
    layers_.reserve(designs.size());
    for (const LayerDesign& design : designs) {
        layers_.emplace_back(design, channelCount);
    }
}

void AnalysisStage::reset() noexcept
{
    input_.clear();
    detector_.reset();
    std::ranges::fill(onsets_, OnsetList{});
    for (LayerAnalysis& layer : layers_) {
        layer.reset();
    }
}

void AnalysisStage::begin(const float* const* channels) noexcept
{
    input_.advance(channels);
    findOnsets();
    analyse(false);
}

void AnalysisStage::findOnsets() noexcept
{
    detector_.advance(input_.whole());
    const std::int64_t block = input_.end() / geometry_.block;
    onsets_[static_cast<std::size_t>(block) % onsets_.size()] = detector_.onsets();
    detector_.forgetOnsetsBefore(input_.end() - geometry_.latency() - geometry_.longestWindow);
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
