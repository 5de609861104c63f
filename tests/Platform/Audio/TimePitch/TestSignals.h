// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "Platform/Audio/TimePitch/PitchShifter.h"

/// Signals with exact ideals, and ways to run them through the shifter and to measure the result.
namespace tonvale::timepitch::test {

using Channel = std::vector<float>;
using Signal = std::vector<Channel>;  ///< one Channel per channel, equal lengths

/// Position in the stream (frames of input so far) -> called before that block; may set the pitch.
using BeforeBlock = std::function<void(PitchShifter&, std::size_t)>;

struct Partial {
    double frequency;  ///< Hz
    double amplitude;
    double phase;  ///< radians at frame 0
};

/// A sum of sinusoids, the same in all channels, faded in and out over 20 ms.
Signal tones(const std::vector<Partial>& partials, double sampleRate, std::size_t frames,
             unsigned channels = 1);
Signal silence(std::size_t frames, unsigned channels = 1);
/// Uniform noise in [-amplitude, amplitude] from a seeded generator.
Signal noise(double amplitude, std::size_t frames, unsigned channels, std::uint32_t seed);

/// Feeds all of `in` and as much silence as the latency, in blocks of `block`; what comes back is
/// shifted in time by the latency, so frame n of it belongs to frame n of `in`.
Signal render(PitchShifter& shifter, const Signal& in, unsigned block = 512,
              const BeforeBlock& before = {});
/// The same from a new shifter at `cents`.
Signal shifted(const Signal& in, double sampleRate, float cents, unsigned block = 512);

/// Signal-to-noise ratio in dB of `samples` [from, to) against sinusoids of the given frequencies
/// (Hz) whose amplitudes and phases are fitted by least squares.
double toneToRest(const Channel& samples, std::size_t from, std::size_t to, double sampleRate,
                  const std::vector<double>& frequencies);
/// The fitted amplitude of one sinusoid in [from, to).
double toneAmplitude(const Channel& samples, std::size_t from, std::size_t to, double sampleRate,
                     double frequency);

double rms(const Channel& samples, std::size_t from, std::size_t to);
double largest(const Channel& samples);
double decibels(double ratio);
bool allFinite(const Signal& signal);

}  // namespace tonvale::timepitch::test
