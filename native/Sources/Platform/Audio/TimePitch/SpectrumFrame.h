// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"

#include <cstdint>
#include <vector>

namespace tonvale::timepitch {

/// Spectra of all channels, real and imaginary parts apart (so that one instruction works on
/// several bins), with room at both ends for loops that work in whole vectors.
/// @thread ANY, one at a time; only constructing allocates
class ChannelSpectra {
public:
    static constexpr int padding = 16;  ///< bins that may be touched beyond either end

    ChannelSpectra() = default;
    ChannelSpectra(unsigned channelCount, int binCount)
        : stride_(binCount + 2 * padding)
        , values_(std::ptrdiff_t{2} * static_cast<std::ptrdiff_t>(channelCount) * stride_)
    {
    }

    [[nodiscard]] float* real(unsigned channel) noexcept { return part(2 * channel); }
    [[nodiscard]] float* imaginary(unsigned channel) noexcept { return part(2 * channel + 1); }
    [[nodiscard]] const float* real(unsigned channel) const noexcept { return part(2 * channel); }
    [[nodiscard]] const float* imaginary(unsigned channel) const noexcept
    {
        return part(2 * channel + 1);
    }
    void clear() noexcept { values_.clear(); }

private:
    [[nodiscard]] std::ptrdiff_t start(unsigned index) const noexcept
    {
        return static_cast<std::ptrdiff_t>(index) * stride_ + padding;
    }
    [[nodiscard]] float* part(unsigned index) noexcept { return values_.data() + start(index); }
    [[nodiscard]] const float* part(unsigned index) const noexcept
    {
        return values_.data() + start(index);
    }

    std::ptrdiff_t stride_ = 0;
    Array<float> values_;
};

/// A local maximum of the power spectrum and the bins that move with it.
struct SpectralPeak {
    int bin = 0;              ///< stored bin of the maximum
    int regionEnd = 0;        ///< one past its last bin; its first is the end of the peak before
    int previousBin = 0;      ///< where the partial was one frame earlier
    float valley = 0;         ///< power at the end of the region, 0 for the last peak
    float advanceBefore = 0;  ///< radians from the frame before to this one
    float advanceAfter = 0;   ///< radians from this frame to the next (known one frame later)
};

/// What the analysis knows about one frame of one layer.
/// @thread as FrameHistory
struct SpectrumFrame {
    SpectrumFrame(unsigned channelCount, int binCount);
    void clear() noexcept;

    ChannelSpectra spectra;
    Array<float> power;               ///< per stored bin, summed over channels
    Array<float> spreadPower;         ///< power summed over a bin and its two neighbours
    std::vector<SpectralPeak> peaks;  ///< ascending; never grows beyond its capacity
    int dcEnd = 0;                    ///< bins [0, dcEnd) are the skirt of DC and stay in place
};

/// The last frames of a layer, addressed by frame number (reference = number times hop).
/// @thread WORKER: one writes the newest frame and the link to it from the one before, while
///         another may read those before these two; only constructing allocates
class FrameHistory {
public:
    /// Frames kept. The synthesis looks back at most eight, the analysis runs ahead by at most
    /// four plus the lead of its thread (AnalysisThread::largestLead).
    static constexpr std::int64_t capacity = 32;

    FrameHistory(unsigned channelCount, int binCount);

    void clear() noexcept;
    [[nodiscard]] SpectrumFrame& at(std::int64_t number) noexcept { return frames_[slot(number)]; }
    [[nodiscard]] const SpectrumFrame& at(std::int64_t number) const noexcept
    {
        return frames_[slot(number)];
    }

private:
    static std::size_t slot(std::int64_t number) noexcept
    {
        return static_cast<std::size_t>(number & (capacity - 1));
    }

    std::vector<SpectrumFrame> frames_;
};

}  // namespace tonvale::timepitch
