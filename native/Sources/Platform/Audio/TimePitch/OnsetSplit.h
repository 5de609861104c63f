// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"
#include "Platform/Audio/TimePitch/Onset.h"
#include "Platform/Audio/TimePitch/SpectrumFrame.h"

namespace tonvale::timepitch {

/// Divides the bins of a frame that holds onsets into what sounds on through them and what is new
/// to one of them.
///
/// The power of a bin now is compared with that of the last frame which ended before the onset:
/// the old share is clamp((sqrt(before / now) - 0.3) / 0.1, 0, 1), the product of both for two
/// onsets. The old bins are heard as ever. The new ones are cut in time at the onsets (CutFrame).
/// @thread WORKER, one at a time; only constructing allocates
class OnsetSplit {
public:
    explicit OnsetSplit(const LayerDesign& design);

    /// Decides for frame `number`.
    void update(const FrameHistory& frames, std::int64_t number,
                const OnsetContext& onsets) noexcept;

    /// False: the whole frame is plain and the shares are not to be used.
    [[nodiscard]] bool isSplit() const noexcept { return isSplit_; }
    /// Factors per stored bin, valid on active bins (and from 0 where the layer carries DC).
    [[nodiscard]] const Array<float>& oldShare() const noexcept { return oldShare_; }
    [[nodiscard]] const Array<float>& newShare() const noexcept { return newShare_; }

    /// The last frame whose heard part ends before `onset`.
    [[nodiscard]] static std::int64_t frameBefore(const LayerGeometry& layer,
                                                  const Onset& onset) noexcept;
    /// Whether a bin with these powers before the onset and now is more new than old.
    [[nodiscard]] static constexpr bool isNew(float before, float now) noexcept
    {
        constexpr float middle = (surelyNew + surelyOld) / 2;
        return before < middle * middle * now;
    }

private:
    static constexpr float surelyNew = 0.3F;  ///< amplitude before the onset over that now
    static constexpr float surelyOld = 0.4F;

    void shareBefore(const FrameHistory& frames, std::int64_t number, const Onset& onset,
                     Array<float>& share) noexcept;

    const LayerDesign& design_;
    int begin_;
    int count_;
    bool isSplit_ = false;
    Array<float> oldShare_;
    Array<float> newShare_;
    Array<float> shareOfOne_;
};

}  // namespace tonvale::timepitch
