// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/AnalysisStage.h"
#include "Platform/Audio/TimePitch/Geometry.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"
#include "Platform/Audio/TimePitch/LowBandChooser.h"
#include "Platform/Audio/TimePitch/OctaveInput.h"
#include "Platform/Audio/TimePitch/OnsetDetector.h"
#include "Platform/Audio/TimePitch/SynthesisLayer.h"

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace tonvale::timepitch {

/// The half of the engine that depends on the pitch: onsets, phases, shifting, output.
/// @thread WORKER, one at a time; only constructing allocates
class SynthesisStage {
public:
    SynthesisStage(const Geometry& geometry, std::span<const LayerDesign> designs,
                   unsigned channelCount);

    /// Back to the start of a stream that is shifted by `ratio` from its first frame.
    void reset(double ratio) noexcept;
    /// Wants another ratio; taken over at the next reference that all layers share.
    void setRatio(double ratio) noexcept { wantedRatio_ = ratio; }

    /// Takes the next block of input (for the onsets), of which `analysis` has taken at least as
    /// many, and makes the next block of output, geometry.latency() frames older than the input's
    /// end. Layers that can wait have their new frame prepared only.
    void begin(const AnalysisStage& analysis, const float* const* input,
               std::span<float* const> output) noexcept;
    /// A first part of finish() that may be done before it.
    void beginFinish() noexcept;
    /// The rest of the block's work, at any time before the next begin().
    void finish(const AnalysisStage& analysis) noexcept;

    /// Work that the next begin() will need, at any time after finish(); changes no result.
    void anticipate() noexcept;

    /// Whether the output is the input but for rounding: nothing is or was shifted that still
    /// sounds, and no phase is turned.
    [[nodiscard]] bool isNeutral() const noexcept
    {
        return wantedRatio_ == 1 && neutralFrames_ >= framesToNeutral_;
    }

private:
    void takeOverRatio(Frames reference) noexcept;
    void chooseLowBand(const AnalysisStage& analysis, Frames reference) noexcept;
    void prepareLayers(Frames reference) noexcept;
    void synthesise(const AnalysisStage& analysis, Frames reference, bool waiting) noexcept;
    void synthesiseLayer(std::size_t index, const AnalysisStage& analysis) noexcept;
    void countNeutralFrames() noexcept;

    const Geometry& geometry_;
    std::span<const LayerDesign> designs_;
    OctaveInput input_;
    OnsetDetector detector_;
    std::vector<std::unique_ptr<SynthesisLayer>> layers_;
    std::optional<LowBandChooser> lowBand_;
    std::vector<Array<float>> fixedWeights_;  ///< per layer
    std::vector<Array<float>> noShare_;       ///< per layer
    double ratio_ = 1;
    double wantedRatio_ = 1;
    Frames inputEnd_ = 0;
    Frames neutralFrames_ = 0;
    Frames framesToNeutral_;
};

}  // namespace tonvale::timepitch
