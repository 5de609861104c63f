// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Geometry.h"
#include "Platform/Audio/TimePitch/LayerAnalysis.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"
#include "Platform/Audio/TimePitch/OctaveInput.h"

#include <span>
#include <vector>

namespace tonvale::timepitch {

/// The half of the engine that depends on the input alone, never on the pitch: it may run ahead of
/// the synthesis, on another thread.
/// @thread WORKER, one at a time
class AnalysisStage {
public:
    AnalysisStage(const Geometry& geometry, std::span<const LayerDesign> designs,
                  unsigned channelCount);

    void reset() noexcept;

    /// Takes the next geometry.block frames and analyses what they complete, in the layers that
    /// cannot wait.
    /// @param channels  one pointer per channel
    void begin(const float* const* channels) noexcept;
    /// The rest of the block's work, at any time before the next begin().
    void finish() noexcept;

    [[nodiscard]] const FrameHistory& frames(std::size_t layer) const noexcept
    {
        return layers_[layer].frames();
    }

private:
    void analyse(bool waiting) noexcept;

    const Geometry& geometry_;
    OctaveInput input_;
    std::vector<LayerAnalysis> layers_;
};

}  // namespace tonvale::timepitch
