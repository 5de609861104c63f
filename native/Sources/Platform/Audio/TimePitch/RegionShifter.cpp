// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>

#include "Platform/Audio/TimePitch/RegionShifter.h"

namespace tonvale::timepitch {

RegionShifter::RegionShifter(const LayerDesign& design)
    : design_(design)
    , lastTarget_(design.geometry.decimatedSize() / 2)
    , angles_(design.binCount + kernels::overrun)
    , gains_(design.binCount + kernels::overrun)
    , sines_(design.binCount + kernels::overrun)
    , cosines_(design.binCount + kernels::overrun)
{
    const double bins = design.geometry.size() / (twoPi * design.geometry.hop);
    binsPerAdvance_ = bins / 2;
    chirpPerDifference_ = static_cast<float>(bins * bins);
    unsteadiness_ = static_cast<float>(2 * bins);
    runs_.reserve(static_cast<std::size_t>(design.binCount));
}

void RegionShifter::plan(const SpectrumFrame& frame, const PhaseTracker& phases, double ratio,
                         const Array<float>& weights, bool withChirp) noexcept
{
    const auto bend = static_cast<float>(design_.windows.phaseBend());
    setNoiseLevel(ratio);
    runs_.clear();
    gained_ = false;
    int begin = frame.dcEnd;
    float valley = 0;
    for (std::size_t index = 0; index < frame.peaks.size(); ++index) {
        const SpectralPeak& peak = frame.peaks[index];
        const Move move = moveOf(peak, ratio, withChirp);
        kernels::BinRun run;
        if (makeRun(peak, begin, move.bins, weights, run)) {
            const auto slot = static_cast<std::ptrdiff_t>(runs_.size());
            angles_[slot] = phases.rotation(index) - move.chirp * bend;
            gains_[slot] = noiseGain(peak, valley, frame.power[peak.bin], weights[peak.bin]);
            design_.kernel.taps(move.offset, move.chirp, run.taps);
            runs_.push_back(run);
        }
        begin = peak.regionEnd;
        valley = peak.valley;
    }
    rotateTaps();
}

RegionShifter::Move RegionShifter::moveOf(const SpectralPeak& peak, double ratio,
                                          bool withChirp) const noexcept
{
    const double before = static_cast<double>(peak.advanceBefore);
    const double after = static_cast<double>(peak.advanceAfter);
    const double bins = (ratio - 1) * (before + after) * binsPerAdvance_;
    const double whole = nearestWhole(bins);
    const auto bend = static_cast<float>((ratio - 1) * (after - before)) * chirpPerDifference_;
    const bool usable = withChirp && std::fabs(bend) <= ShiftKernel::chirpLimit;
    return {static_cast<int>(whole), static_cast<float>(bins - whole), usable ? bend : 0};
}

/// @return false when nothing of the region is heard
bool RegionShifter::makeRun(const SpectralPeak& peak, int begin, int shift,
                            const Array<float>& weights, kernels::BinRun& run) const noexcept
{
    run.shift = shift + design_.firstBin;
    run.begin = std::max({begin, design_.activeBegin, -run.shift});
    run.end = std::min({peak.regionEnd, design_.activeEnd, lastTarget_ - run.shift});
    return run.begin < run.end
           && (weights[peak.bin] != 0 || weights[run.begin] != 0 || weights[run.end - 1] != 0);
}

void RegionShifter::setNoiseLevel(double ratio) noexcept
{
    constexpr double atUnison = 0.08;  // gains measured on white and pink noise
    constexpr double perSemitone = 0.015;
    constexpr double inCrossover = 0.6;
    constexpr double fadeIn = 5;  // per semitone: nothing may jump when 0 is crossed
    const double semitones = std::abs(12 * std::log2(ratio));
    const double faded = std::min(1.0, fadeIn * semitones);
    basicNoiseGain_ = static_cast<float>((atUnison + perSemitone * semitones) * faded);
    crossoverNoiseGain_ = static_cast<float>(inCrossover * faded);
}

// Two bands that add up to 1 in amplitude but not in phase lose sqrt(B^2 + (1 - B)^2).
float RegionShifter::noiseGain(const SpectralPeak& peak, float valleyBefore, float power,
                               float weight) const noexcept
{
    constexpr float shallowValleys = 10;
    constexpr float surelyTonal = 0.1F;
    const float depth = std::min(1.0F, (valleyBefore + peak.valley) / power * shallowValleys);
    const float unsteady =
        std::min(1.0F, std::fabs(peak.advanceAfter - peak.advanceBefore) * unsteadiness_);
    const float noise = std::max(0.0F, depth - surelyTonal) * unsteady;
    const float rest = 1 - weight;
    const float crossover = 1 / std::sqrt(weight * weight + rest * rest) - 1;
    return 1 + noise * (basicNoiseGain_ + crossoverNoiseGain_ * crossover);
}

void RegionShifter::rotateTaps() noexcept
{
    const auto count = static_cast<int>(runs_.size());
    kernels::sinesAndCosines(angles_.data(), count, sines_.data(), cosines_.data());
    std::ptrdiff_t slot = 0;
    for (kernels::BinRun& run : runs_) {
        const float c = cosines_[slot];
        const float s = sines_[slot];
        for (int tap = 0; tap < kernels::tapCount; ++tap) {
            const float real = run.taps[2 * tap];
            const float imaginary = run.taps[2 * tap + 1];
            run.taps[2 * tap] = real * c - imaginary * s;
            run.taps[2 * tap + 1] = real * s + imaginary * c;
        }
        ++slot;
    }
}

void RegionShifter::apply(const ChannelSpectra& source, ChannelSpectra& target,
                          unsigned channelCount, bool raiseNoise) noexcept
{
    if (raiseNoise != gained_) {
        std::ptrdiff_t slot = 0;
        for (kernels::BinRun& run : runs_) {
            const float gain = raiseNoise ? gains_[slot] : 1 / gains_[slot];
            for (float& tap : run.taps) {
                tap *= gain;
            }
            ++slot;
        }
        gained_ = raiseNoise;
    }
    for (unsigned channel = 0; channel < channelCount; ++channel) {
        kernels::shiftRuns(runs_.data(), static_cast<int>(runs_.size()), source.real(channel),
                           source.imaginary(channel), target.real(channel),
                           target.imaginary(channel));
    }
}

}  // namespace tonvale::timepitch
