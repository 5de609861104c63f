// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/AnalysisStage.h"
#include "Platform/Audio/TimePitch/Geometry.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"
#include "Platform/Audio/TimePitch/LowBandChooser.h"
#include "Platform/Audio/TimePitch/SynthesisLayer.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace tonvale::timepitch {

/// The half of the engine that depends on the pitch: cuts at onsets, phases, shifting, output.
/// @thread WORKER, one at a time; only constructing allocates
class SynthesisStage {
public:
    SynthesisStage(const AnalysisStage& analysis, const Geometry& geometry,
                   std::span<const LayerDesign> designs, unsigned channelCount);

    /// Back to the start of a stream that is shifted by `ratio` from its first frame.
    void reset(double ratio) noexcept;
    /// Wants another ratio; taken over at the next reference that all layers share.
    void setRatio(double ratio) noexcept { wantedRatio_ = ratio; }

    /// Takes the next block that the analysis has done; the block of output, geometry.latency()
    /// frames older than the input's end, is then ready to be rendered. Layers that can wait have
    /// their new frame prepared only.
    void begin() noexcept;
    /// Makes frames [begin, end) of the block; from its beginning to its end before the next
    /// begin(), however it is cut (BlockPart).
    /// @param output  the whole block
    void render(int begin, int end, std::span<float* const> output) noexcept;
    /// The next block to be rendered to or being rendered.
    [[nodiscard]] BlockPart part(int begin, int end) const noexcept
    {
        return {inputEnd_ - geometry_.latency(), begin, end};
    }

    /// The rest of the block's work in three steps, in this order, before the next begin(). The
    /// first one may be left out.
    void cutWaiting() noexcept;
    void synthesiseWaiting() noexcept;
    void finish() noexcept;

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
    void chooseLowBand(Frames reference) noexcept;
    void prepareLayers(Frames reference) noexcept;
    void synthesise(Frames reference, bool waiting) noexcept;
    void synthesiseHits(Frames reference, bool waiting) noexcept;
    void synthesiseLayer(std::size_t index) noexcept;
    [[nodiscard]] const OnsetList& onsets() const noexcept { return analysis_.onsets(block_); }
    void countNeutralFrames() noexcept;

    const AnalysisStage& analysis_;
    const Geometry& geometry_;
    std::span<const LayerDesign> designs_;
    std::vector<std::unique_ptr<SynthesisLayer>> layers_;
    std::optional<LowBandChooser> lowBand_;
    std::vector<Array<float>> fixedWeights_;  ///< per layer
    std::vector<Array<float>> noShare_;       ///< per layer
    double ratio_ = 1;
    double wantedRatio_ = 1;
    std::int64_t block_ = 0;  ///< taken so far
    Frames inputEnd_ = 0;
    Frames neutralFrames_ = 0;
    Frames framesToNeutral_;
};

}  // namespace tonvale::timepitch
