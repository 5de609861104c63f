// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/TimePitch/OnsetSplit.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

namespace tonvale::timepitch {

OnsetSplit::OnsetSplit(const LayerDesign& design)
    : design_(design)
    , begin_(design.carriesDc() ? 0 : design.activeBegin)
    , count_(design.activeEnd - begin_)
    , oldShare_(design.binCount)
    , newShare_(design.binCount)
    , shareOfOne_(design.binCount)
{
}

std::int64_t OnsetSplit::frameBefore(const LayerGeometry& layer, const Onset& onset) noexcept
{
    return floorDivide(onset.position - layer.release, layer.hop);
}

void OnsetSplit::update(const FrameHistory& frames, std::int64_t number,
                        const OnsetContext& onsets) noexcept
{
    isSplit_ = !onsets.isPlain();
    if (!isSplit_) {
        return;
    }
    oldShare_.fill(1);
    for (const Onset* onset : {onsets.current, onsets.next}) {
        if (onset != nullptr) {
            shareBefore(frames, number, *onset, shareOfOne_);
            for (int k = begin_; k < design_.activeEnd; ++k) {
                oldShare_[k] *= shareOfOne_[k];
            }
        }
    }
    for (int k = begin_; k < design_.activeEnd; ++k) {
        newShare_[k] = 1 - oldShare_[k];
    }
}

void OnsetSplit::shareBefore(const FrameHistory& frames, std::int64_t number, const Onset& onset,
                             Array<float>& share) noexcept
{
    const Array<float>& before = frames.at(frameBefore(design_.geometry, onset)).spreadPower;
    const Array<float>& now = frames.at(number).spreadPower;
    const auto layer = static_cast<std::size_t>(design_.geometry.index);
    kernels::amplitudeRatios(before.data() + begin_, now.data() + begin_, onset.remainder[layer],
                             surelyNew, surelyOld, count_, share.data() + begin_);
}

}  // namespace tonvale::timepitch
