// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Geometry.h"
#include "Platform/Audio/TimePitch/LayerAnalysis.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"
#include "Platform/Audio/TimePitch/OctaveInput.h"
#include "Platform/Audio/TimePitch/OnsetDetector.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace tonvale::timepitch {

/// The half of the engine that depends on the input alone, never on the pitch: it may run ahead of
/// the synthesis, on another thread.
/// @thread begin(), finish(), reset(): WORKER, one at a time; the rest may be called by another one
///         for blocks that are done, up to `lead` blocks after them
class AnalysisStage {
public:
    /// @param lead  blocks that it may be ahead of whoever reads
    AnalysisStage(const Geometry& geometry, std::span<const LayerDesign> designs,
                  unsigned channelCount, int lead = 0);

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
    [[nodiscard]] const OctaveInput& input() const noexcept { return input_; }
    /// The onsets that were known when `block` (counted from 1) was the newest.
    [[nodiscard]] const OnsetList& onsets(std::int64_t block) const noexcept
    {
        return onsets_[static_cast<std::size_t>(block) % onsets_.size()];
    }
    /// What the onsets were found by.
    [[nodiscard]] const OnsetDetector& detector() const noexcept { return detector_; }

private:
    void findOnsets() noexcept;
    void analyse(bool waiting) noexcept;

    const Geometry& geometry_;
    OctaveInput input_;
    OnsetDetector detector_;
    std::array<OnsetList, FrameHistory::capacity> onsets_;  ///< by block
    std::vector<LayerAnalysis> layers_;
};

}  // namespace tonvale::timepitch
