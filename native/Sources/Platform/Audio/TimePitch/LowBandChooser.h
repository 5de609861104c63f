// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"
#include "Platform/Audio/TimePitch/SpectrumFrame.h"

#include <cstdint>
#include <vector>

namespace tonvale::timepitch {

/// Lets the second layer, whose window is shorter, serve those partials of the lowest band that
/// move: a voice's vibrato or a glide, which the long window smears.
///
/// Both layers have the same hop and the same heard window, so a partial may change hands at any
/// frame. A strong peak is taken when it stands alone (no other strong peak within 4 bins, deep
/// valleys on both sides), its level is steady over three frames (a beating pair's is not), and its
/// advance has changed lately.
/// @thread WORKER, one at a time; only constructing allocates
class LowBandChooser {
public:
    LowBandChooser(const LayerDesign& lowest, const LayerDesign& second);

    void reset() noexcept;
    /// Decides for frame `number` of both layers.
    /// @param frames   of the second layer, known up to number + 1
    /// @param allowed  false near onsets: the lowest layer then keeps everything
    void update(const FrameHistory& frames, std::int64_t number, bool allowed) noexcept;

    /// By stored bin of the second layer: 1 where it serves the lowest band, else 0.
    [[nodiscard]] const Array<float>& servedShare() const noexcept { return share_; }
    /// The same by stored bin of the lowest layer (between bins: straight lines).
    [[nodiscard]] const Array<float>& lostShare() const noexcept { return lostShare_; }
    /// Band weights of the two layers with this decision.
    [[nodiscard]] const Array<float>& lowestWeights() const noexcept { return lowestWeights_; }
    [[nodiscard]] const Array<float>& secondWeights() const noexcept { return secondWeights_; }

private:
    void holdMovement(const SpectrumFrame& frame) noexcept;
    void collectStrong(const SpectrumFrame& frame) noexcept;
    [[nodiscard]] bool standsAlone(std::size_t strong) const noexcept;
    [[nodiscard]] bool isSteady(const FrameHistory& frames, std::int64_t number,
                                const SpectralPeak& peak) const noexcept;
    void take(const SpectrumFrame& frame, std::size_t strong) noexcept;
    void setWeights() noexcept;

    const LayerDesign& lowest_;
    const LayerDesign& second_;
    int bandEnd_;                  ///< bins of the second layer that the lowest band reaches to
    float movementPerDifference_;  ///< (N / 2 pi H)^2: radians of chirp per radian
    Array<float> lowestAtSecond_;  ///< the lowest band's weights by stored bin of the second layer
    Array<float> share_;
    Array<float> lostShare_;
    Array<float> lowestWeights_;
    Array<float> secondWeights_;
    Array<float> movement_;  ///< by bin: largest recent change of advance, held
    Array<float> nextMovement_;
    std::vector<SpectralPeak> strong_;
};

}  // namespace tonvale::timepitch
