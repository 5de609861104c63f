// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <bit>
#include <cstring>

#include "Platform/Audio/TimePitch/PeakTracker.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

namespace tonvale::timepitch {

namespace {

constexpr int neighbours = 2;  // a peak exceeds this many bins on each side
constexpr int flagsPerWord = 8;

float advanceLimit(const LayerGeometry& geometry)
{
    // Two bins beside the bin's own advance, and a radian for the window's width.
    return static_cast<float>(twoPi * geometry.hop / geometry.size() * 2 + 1);
}

}  // namespace

PeakTracker::PeakTracker(const LayerDesign& design, unsigned channelCount)
    : design_(design)
    , channelCount_(channelCount)
    , largestDeviation_(advanceLimit(design.geometry))
    , flags_(design.binCount + flagsPerWord)
    , halfBinAdvance_(2 * design.binCount)
    , wrappedAdvance_(2 * design.binCount)
    , sourceOf_(design.binCount)
    , advanceTo_(design.binCount)
    , target_(design.binCount)
    , crossReal_(design.binCount + kernels::overrun)
    , crossImaginary_(design.binCount + kernels::overrun)
    , angle_(design.binCount + kernels::overrun)
{
    for (int sum = 0; sum < halfBinAdvance_.size(); ++sum) {
        const double expected = design.expectedAdvance(sum / 2.0);
        halfBinAdvance_[sum] = static_cast<float>(expected);
        wrappedAdvance_[sum] = static_cast<float>(wrapPhase(expected));
    }
}

void PeakTracker::find(SpectrumFrame& frame) noexcept
{
    constexpr int margin = 4;  // bins outside the band: a region may begin with a peak there
    const int begin = std::max(neighbours, design_.activeBegin - margin);
    const int end = std::min(design_.binCount - neighbours, design_.activeEnd + margin);
    kernels::flagMaxima(frame.power.data(), begin, end, design_.silencePower, flags_.data());
    frame.peaks.clear();
    collect(frame, begin, end);
    if (frame.peaks.empty()) {  // a slope without a maximum, as the skirt of DC
        const float* power = frame.power.data();
        const float* top = std::max_element(power + begin, power + end);
        if (*top > design_.silencePower) {
            frame.peaks.push_back({.bin = static_cast<int>(top - power)});
        }
    }
    findRegions(frame);
}

void PeakTracker::collect(SpectrumFrame& frame, int begin, int end) noexcept
{
    static_assert(std::endian::native == std::endian::little);
    for (int k = begin; k < end;) {
        std::uint64_t word = 0;  // most bins are no peaks: look at eight flags at once
        std::memcpy(&word, flags_.data() + k, sizeof(word));
        if (word == 0) {
            k += flagsPerWord;
            continue;
        }
        k += std::countr_zero(word) / 8;
        if (k < end) {
            frame.peaks.push_back({.bin = k});
        }
        ++k;
    }
}

void PeakTracker::findRegions(SpectrumFrame& frame) const noexcept
{
    const Array<float>& power = frame.power;
    frame.dcEnd = 0;
    if (frame.peaks.empty()) {
        return;
    }
    for (std::size_t index = 0; index + 1 < frame.peaks.size(); ++index) {
        SpectralPeak& peak = frame.peaks[index];
        const int next = frame.peaks[index + 1].bin;
        int valley = peak.bin;
        float least = power[valley];
        for (int bin = valley + 1; bin < next; ++bin) {
            const bool isLess = power[bin] < least;
            valley = isLess ? bin : valley;
            least = isLess ? power[bin] : least;
        }
        peak.regionEnd = valley + 1;
        peak.valley = least;
    }
    frame.peaks.back().regionEnd = design_.binCount;
    if (design_.carriesDc()) {
        while (frame.dcEnd < frame.peaks.front().bin
               && power[frame.dcEnd] > power[frame.dcEnd + 1]) {
            ++frame.dcEnd;
        }
    }
}

// The angles of many peaks are computed at once (VectorKernels), so every pass goes over them
// twice.
void PeakTracker::link(SpectrumFrame& before, SpectrumFrame& frame) noexcept
{
    followOn(frame, before);
    followBack(before, frame);
}

void PeakTracker::followOn(const SpectrumFrame& frame, SpectrumFrame& before) noexcept
{
    sourceOf_.fill(-1);
    int count = 0;
    for (const SpectralPeak& peak : before.peaks) {
        target_[count] = climb(frame.power, peak.bin, before.power[peak.bin]);
        prepare(count, before, peak.bin, frame, target_[count]);
        ++count;
    }
    kernels::angles(crossImaginary_.data(), crossReal_.data(), count, angle_.data());
    count = 0;
    for (SpectralPeak& peak : before.peaks) {
        const int bin = target_[count];
        peak.advanceAfter = advance(count, peak.bin + bin, peak.bin);
        sourceOf_[bin] = peak.bin;
        advanceTo_[bin] = peak.advanceAfter;
        ++count;
    }
}

/// A peak that climbs back to the one that climbed to it shares that one's advance.
void PeakTracker::followBack(const SpectrumFrame& before, SpectrumFrame& frame) noexcept
{
    int count = 0;
    for (SpectralPeak& peak : frame.peaks) {
        peak.previousBin = climb(before.power, peak.bin, frame.power[peak.bin]);
        if (sourceOf_[peak.bin] != peak.previousBin) {
            prepare(count++, before, peak.previousBin, frame, peak.bin);
        }
    }
    kernels::angles(crossImaginary_.data(), crossReal_.data(), count, angle_.data());
    count = 0;
    for (SpectralPeak& peak : frame.peaks) {
        peak.advanceBefore = sourceOf_[peak.bin] == peak.previousBin
                                 ? advanceTo_[peak.bin]
                                 : advance(count++, peak.bin + peak.previousBin, peak.bin);
    }
}

void PeakTracker::prepare(int slot, const SpectrumFrame& before, int binBefore,
                          const SpectrumFrame& frame, int bin) noexcept
{
    float real = 0;
    float imaginary = 0;
    for (unsigned channel = 0; channel < channelCount_; ++channel) {
        const float a = before.spectra.real(channel)[binBefore];
        const float b = before.spectra.imaginary(channel)[binBefore];
        const float c = frame.spectra.real(channel)[bin];
        const float d = frame.spectra.imaginary(channel)[bin];
        real += c * a + d * b;
        imaginary += d * a - c * b;
    }
    crossReal_[slot] = real;
    crossImaginary_[slot] = imaginary;
}

float PeakTracker::advance(int slot, int binSum, int ownBin) const noexcept
{
    // Both terms lie in [-pi, pi], so one turn is enough to bring the difference there.
    constexpr auto turn = static_cast<float>(twoPi);
    constexpr auto half = static_cast<float>(pi);
    float deviation = angle_[slot] - wrappedAdvance_[binSum];
    deviation = deviation > half ? deviation - turn : deviation;
    deviation = deviation < -half ? deviation + turn : deviation;
    const float path = halfBinAdvance_[binSum];
    const float own = halfBinAdvance_[2 * ownBin];
    return std::clamp(path + deviation, own - largestDeviation_, own + largestDeviation_);
}

int PeakTracker::climb(const Array<float>& power, int start, float peakPower) noexcept
{
    constexpr int steps = 4;
    constexpr float anotherPartial = 16;  // 12 dB
    int bin = start;
    for (int step = 0; step < steps; ++step) {
        if (power[bin + 1] > power[bin]) {
            ++bin;
        } else if (power[bin - 1] > power[bin]) {
            --bin;
        } else {
            break;
        }
        if (bin < neighbours || bin > power.size() - 1 - neighbours) {
            return start;
        }
    }
    return power[bin] > anotherPartial * peakPower ? start : bin;
}

}  // namespace tonvale::timepitch
