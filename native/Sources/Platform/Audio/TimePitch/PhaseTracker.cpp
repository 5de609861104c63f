// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>
#include <utility>

#include "Platform/Audio/TimePitch/OnsetSplit.h"
#include "Platform/Audio/TimePitch/PhaseTracker.h"

namespace tonvale::timepitch {

namespace {

constexpr float serves = 0.5F;  // shares are 0 or 1 except where resampled between layers

/// One past the last stored bin where the layer below also has a part; 0 where there is none.
int findCrossoverEnd(const LayerDesign& design)
{
    const Crossover& edge = design.geometry.lower;
    const double bins = (edge.centre + edge.halfWidth) / design.geometry.binWidth();
    return static_cast<int>(std::ceil(bins)) - design.firstBin;
}

}  // namespace

PhaseTracker::PhaseTracker(const LayerDesign& design)
    : design_(design)
    , crossoverEnd_(findCrossoverEnd(design))
    , returnStep_(
          static_cast<float>(returnSpeed * design.geometry.hop / design.geometry.sampleRate))
    , framesPerAdvance_(0.5 / design.geometry.hop)
    , rotations_(design.binCount)
    , speeds_(design.binCount)
    , nextRotations_(design.binCount)
    , peakRotations_(design.binCount)
{
}

void PhaseTracker::reset(double ratio) noexcept
{
    previousRatio_ = ratio;
    rotations_.clear();
    speeds_.clear();
}

// When the ratio changes, the old frames are heard until half a hop before this frame's reference
// (SynthesisLayer). For old and new to meet there in phase, the part of the advance before that
// moment counts with the old ratio, the part after it with the new one.
void PhaseTracker::advance(const Frame& frame) noexcept
{
    const double shift = static_cast<double>(design_.windows.phaseOffset()) / design_.geometry.hop;
    const double gained = (0.5 - shift) * previousRatio_ + (0.5 + shift) * frame.ratio - 1;
    const bool returning = previousRatio_ == 1 && frame.ratio == 1;
    previousRatio_ = frame.ratio;
    int begin = 0;
    std::ptrdiff_t index = 0;
    for (const SpectralPeak& peak : frame.spectrum.peaks) {
        double rotation = wrapPhase(rotationOf(peak, frame, gained));
        if (returning) {
            rotation = returned(rotation);
        }
        peakRotations_[index] = static_cast<float>(rotation);
        keep(peak, begin, peakRotations_[index], frame.ratio);
        ++index;
        begin = peak.regionEnd;
    }
    if (!frame.spectrum.peaks.empty()) {
        std::swap(rotations_, nextRotations_);
    } else if (returning) {
        for (float& rotation : rotations_) {
            rotation = static_cast<float>(returned(rotation));
        }
    }
}

double PhaseTracker::rotationOf(const SpectralPeak& peak, const Frame& frame,
                                double gained) const noexcept
{
    const LayerGeometry& layer = design_.geometry;
    const int offset = design_.windows.phaseOffset();
    if (frame.firstAfter != nullptr) {
        const Onset& onset = *frame.firstAfter;
        const float remainder = onset.remainder[static_cast<std::size_t>(layer.index)];
        const float before = remainder * (*frame.powerBefore)[peak.bin];
        if (OnsetSplit::isNew(before, frame.spectrum.spreadPower[peak.bin])) {
            const auto distance = static_cast<double>(frame.reference + offset - onset.position);
            return (frame.ratio - 1) * distance * static_cast<double>(peak.advanceAfter)
                   / layer.hop;
        }
    }
    if (followsLower(peak.bin, frame)) {
        const PhaseTracker& lower = *frame.lower;
        const int bin = lower.design_.nearestBin(design_, peak.bin);
        const auto distance =
            static_cast<double>(frame.sinceLower + offset - lower.design_.windows.phaseOffset());
        return static_cast<double>(lower.rotations_[bin])
               + static_cast<double>(lower.speeds_[bin]) * distance;
    }
    return static_cast<double>(rotations_[peak.previousBin])
           + gained * static_cast<double>(peak.advanceBefore);
}

bool PhaseTracker::followsLower(int bin, const Frame& frame) const noexcept
{
    return frame.lower != nullptr && bin < crossoverEnd_ && frame.ownShare[bin] < serves;
}

void PhaseTracker::keep(const SpectralPeak& peak, int begin, float rotation, double ratio) noexcept
{
    const double advances =
        static_cast<double>(peak.advanceBefore) + static_cast<double>(peak.advanceAfter);
    const auto speed = static_cast<float>((ratio - 1) * advances * framesPerAdvance_);
    for (int k = begin; k < peak.regionEnd; ++k) {
        nextRotations_[k] = rotation;
        speeds_[k] = speed;
    }
}

double PhaseTracker::returned(double rotation) const noexcept
{
    const double step = static_cast<double>(returnStep_);
    return rotation - std::clamp(rotation, -step, step);
}

void PhaseTracker::handTo(PhaseTracker& lower, const Array<float>& servedShare) const noexcept
{
    const int distance = design_.windows.phaseOffset() - lower.design_.windows.phaseOffset();
    for (int k = 0; k < lower.design_.binCount; ++k) {
        if (servedShare[k] >= serves) {
            const int bin = design_.nearestBin(lower.design_, k);
            lower.rotations_[k] = rotations_[bin] - speeds_[bin] * static_cast<float>(distance);
        }
    }
}

}  // namespace tonvale::timepitch
