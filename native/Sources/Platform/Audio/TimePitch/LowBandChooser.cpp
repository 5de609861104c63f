// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>
#include <utility>

#include "Platform/Audio/TimePitch/LowBandChooser.h"
#include "Platform/Audio/TimePitch/PeakTracker.h"

namespace tonvale::timepitch {

namespace {

constexpr int reach = 12;  // bins above the band whose peaks still count as neighbours

/// `values` (by FFT bin of a layer) read between bins at FFT bin `bin` of another one.
float readBetween(const Array<float>& values, double bin)
{
    const int below = std::clamp(static_cast<int>(bin), 0, static_cast<int>(values.size()) - 2);
    const auto part = static_cast<float>(bin - below);
    return values[below] + part * (values[below + 1] - values[below]);
}

}  // namespace

LowBandChooser::LowBandChooser(const LayerDesign& lowest, const LayerDesign& second)
    : lowest_(lowest)
    , second_(second)
    , lowestAtSecond_(second.binCount)
    , share_(second.binCount)
    , lostShare_(lowest.binCount)
    , lowestWeights_(lowest.binCount)
    , secondWeights_(second.binCount)
    , movement_(second.binCount)
    , nextMovement_(second.binCount)
{
    const LayerGeometry& layer = second.geometry;
    bandEnd_ =
        static_cast<int>((layer.lower.centre + layer.lower.halfWidth) / layer.binWidth()) + 2;
    const double bins = layer.size() / (twoPi * layer.hop);
    movementPerDifference_ = static_cast<float>(bins * bins);
    for (int k = 0; k < second.binCount; ++k) {
        const double bin =
            static_cast<double>(k + second.firstBin) * lowest.geometry.size() / layer.size();
        lowestAtSecond_[k] = bin + 1 < static_cast<double>(lowest.bandWeights.size())
                                 ? readBetween(lowest.bandWeights, bin)
                                 : 0;
    }
    strong_.reserve(static_cast<std::size_t>(second.binCount));
    reset();
}

void LowBandChooser::reset() noexcept
{
    share_.clear();
    movement_.clear();
    nextMovement_.clear();
    setWeights();
}

void LowBandChooser::update(const FrameHistory& frames, std::int64_t number, bool allowed) noexcept
{
    const SpectrumFrame& frame = frames.at(number);
    share_.clear();
    holdMovement(frame);
    if (allowed) {
        collectStrong(frame);
        for (std::size_t index = 0; index < strong_.size(); ++index) {
            if (standsAlone(index) && isSteady(frames, number, strong_[index])) {
                take(frame, index);
            }
        }
    }
    setWeights();
}

// A vibrato stands still for a moment at each turning point; holding the movement keeps the layer
// from switching there.
void LowBandChooser::holdMovement(const SpectrumFrame& frame) noexcept
{
    constexpr float hold = 0.85F;
    int begin = 0;
    for (const SpectralPeak& peak : frame.peaks) {
        if (begin >= bandEnd_ + reach) {
            break;
        }
        const float now =
            std::fabs(peak.advanceAfter - peak.advanceBefore) * movementPerDifference_;
        std::fill(&nextMovement_[begin], &nextMovement_[peak.regionEnd],
                  std::max(now, hold * movement_[peak.previousBin]));
        begin = peak.regionEnd;
    }
    std::swap(movement_, nextMovement_);
}

void LowBandChooser::collectStrong(const SpectrumFrame& frame) noexcept
{
    constexpr int neighbourhood = 10;  // bins
    constexpr float weakest = 1e-4F;   // 40 dB below the strongest neighbour
    strong_.clear();
    const std::vector<SpectralPeak>& peaks = frame.peaks;
    for (auto peak = peaks.begin(); peak != peaks.end() && peak->bin < bandEnd_ + reach; ++peak) {
        float largest = frame.power[peak->bin];
        for (auto left = peak;
             left != peaks.begin() && peak->bin - (left - 1)->bin <= neighbourhood; --left) {
            largest = std::max(largest, frame.power[(left - 1)->bin]);
        }
        for (auto right = peak + 1; right != peaks.end() && right->bin - peak->bin <= neighbourhood;
             ++right) {
            largest = std::max(largest, frame.power[right->bin]);
        }
        if (frame.power[peak->bin] > weakest * largest) {
            strong_.push_back(*peak);
        }
    }
}

bool LowBandChooser::standsAlone(std::size_t strong) const noexcept
{
    constexpr int smallestGap = 4;  // bins: 43 Hz
    const int bin = strong_[strong].bin;
    const bool left = strong == 0 || bin - strong_[strong - 1].bin >= smallestGap;
    const bool right = strong + 1 == strong_.size() || strong_[strong + 1].bin - bin >= smallestGap;
    return left && right && bin < bandEnd_;
}

bool LowBandChooser::isSteady(const FrameHistory& frames, std::int64_t number,
                              const SpectralPeak& peak) const noexcept
{
    constexpr float leastMovement = 0.1F;
    constexpr float tiny = 1e-20F;
    constexpr float mostChange = 1.2589254F;  // 1 dB
    const SpectrumFrame& before = frames.at(number - 1);
    const SpectrumFrame& frame = frames.at(number);
    const SpectrumFrame& after = frames.at(number + 1);
    const auto isNear = [](float a, float b) { return a < mostChange * b && b < mostChange * a; };
    if (movement_[peak.bin] <= leastMovement) {
        return false;
    }
    const int next = PeakTracker::climb(after.power, peak.bin, frame.power[peak.bin]);
    const float now = frame.spreadPower[peak.bin] + tiny;
    return isNear(before.spreadPower[peak.previousBin] + tiny, now)
           && isNear(now, after.spreadPower[next] + tiny);
}

/// Takes the bins between the deepest valleys to both strong neighbours, if those are deep enough.
void LowBandChooser::take(const SpectrumFrame& frame, std::size_t strong) noexcept
{
    constexpr float deepest = 0.001F;  // -30 dB
    constexpr int lastKept = 2;        // bins up to here stay with the lowest layer
    const Array<float>& power = frame.power;
    const int bin = strong_[strong].bin;
    const int left = strong > 0 ? strong_[strong - 1].bin : lastKept;
    const int right = std::min(
        second_.binCount, strong + 1 < strong_.size() ? strong_[strong + 1].bin : bandEnd_ + reach);
    int begin = bin;
    for (int k = bin; k > left; --k) {
        begin = power[k] < power[begin] ? k : begin;
    }
    int last = bin;
    for (int k = bin; k < right; ++k) {
        last = power[k] < power[last] ? k : last;
    }
    if (std::max(power[begin], power[last]) <= deepest * power[bin]) {
        std::fill(&share_[begin], &share_[last + 1], 1.0F);
    }
}

void LowBandChooser::setWeights() noexcept
{
    for (int k = 0; k < second_.binCount; ++k) {
        secondWeights_[k] =
            second_.bandWeights[k + second_.firstBin] + share_[k] * lowestAtSecond_[k];
    }
    const double step = static_cast<double>(second_.geometry.size()) / lowest_.geometry.size();
    for (int k = 0; k < lowest_.binCount; ++k) {
        lostShare_[k] = readBetween(share_, (k + lowest_.firstBin) * step - second_.firstBin);
        lowestWeights_[k] = lowest_.bandWeights[k + lowest_.firstBin] * (1 - lostShare_[k]);
    }
}

}  // namespace tonvale::timepitch
