// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"
#include "Platform/Audio/TimePitch/LayerDesign.h"
#include "Platform/Audio/TimePitch/PhaseTracker.h"
#include "Platform/Audio/TimePitch/SpectrumFrame.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

#include <vector>

namespace tonvale::timepitch {

/// Moves the region of every peak to its new frequency.
///
/// The shift is (r - 1) w N / 2 pi = d + offset bins: d whole bins by moving, the offset and the
/// tone's chirp by ShiftKernel. Noise adds up to less after shifting, as the frames of one noisy
/// region no longer agree (0.35 dB near 0, 1 dB at six semitones, more in crossovers); what looks
/// like noise (shallow valleys, unsteady advance) is made louder by that much.
/// @thread WORKER, one at a time; only constructing allocates
class RegionShifter {
public:
    explicit RegionShifter(const LayerDesign& design);

    /// Prepares the moves of one frame.
    /// @param weights    band weight per stored bin
    /// @param withChirp  false near onsets, where the two advances do not belong to one tone
    void plan(const SpectrumFrame& frame, const PhaseTracker& phases, double ratio,
              const Array<float>& weights, bool withChirp) noexcept;

    /// Adds the shifted source to the target spectra. Source bins are stored bins, target bins
    /// those of the layer's FFT.
    /// @param raiseNoise  for the sustained part only; hits need no correction
    void apply(const ChannelSpectra& source, ChannelSpectra& target, unsigned channelCount,
               bool raiseNoise) noexcept;

private:
    struct Move {  ///< how far a region goes
        int bins;
        float offset;
        float chirp;
    };
    [[nodiscard]] Move moveOf(const SpectralPeak& peak, double ratio,
                              bool withChirp) const noexcept;
    [[nodiscard]] bool makeRun(const SpectralPeak& peak, int begin, int shift,
                               const Array<float>& weights, kernels::BinRun& run) const noexcept;
    [[nodiscard]] float noiseGain(const SpectralPeak& peak, float valleyBefore, float power,
                                  float weight) const noexcept;
    void setNoiseLevel(double ratio) noexcept;
    void rotateTaps() noexcept;

    const LayerDesign& design_;
    double binsPerAdvance_;     ///< of the two advances' sum
    float chirpPerDifference_;  ///< (N / 2 pi H)^2
    float unsteadiness_;        ///< 1 / (difference of advances that is surely noise)
    int lastTarget_;
    float basicNoiseGain_ = 0;
    float crossoverNoiseGain_ = 0;
    std::vector<kernels::BinRun> runs_;
    Array<float> angles_;
    Array<float> gains_;
    Array<float> sines_;
    Array<float> cosines_;
    bool gained_ = false;
};

}  // namespace tonvale::timepitch
