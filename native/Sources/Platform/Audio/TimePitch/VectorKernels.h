// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>

/// The engine's inner loops over bins and samples, and nothing else.
///
/// They are plain C++ written for the compiler's vectoriser. Where the compiler can, each exists
/// twice, for baseline x86-64 and for x86-64-v3 (AVX2), and the loader picks one at start. Both
/// round alike (no fused multiply-add, no reordered sums), so a machine's age never changes the
/// sound. Pointers never overlap unless a comment says so.
/// @thread ANY - no allocation, lock or error
namespace tonvale::timepitch::kernels {

/// Values a loop may read or write beyond `count`.
constexpr int overrun = 16;

/// out[i] = a[i] b[i]
void multiply(const float* a, const float* b, int count, float* out) noexcept;
/// out[i] += a[i] b[i]
void multiplyAdd(const float* a, const float* b, int count, float* out) noexcept;
/// out[i] -= a[i] b[i]
void multiplySubtract(const float* a, const float* b, int count, float* out) noexcept;
/// out[i] += a[i]
void add(const float* a, int count, float* out) noexcept;

/// out[i] = in[i] within +-65536; NaN and infinities become 0
void sanitise(const float* in, int count, float* out) noexcept;

/// Bins [first, first + count) of a real sequence from the transform z (`half` + 1 complex values,
/// the last equal to the first) of its even samples plus i times its odd ones; with
/// a + ib = z[k], c + id = z[half - k], t = 2 pi k / (2 half):
///     X[k] = (a + c + (b + d) cos t - (a - c) sin t) / 2
///          + i (b - d - (a - c) cos t - (b + d) sin t) / 2
/// The squared magnitudes are added to `power`.
void separateReal(const float* z, int half, const float* cosines, const float* sines, int first,
                  int count, float* real, float* imaginary, float* power) noexcept;
/// The inverse of separateReal() times two, from half + 1 bins to `half` complex values.
void joinReal(const float* real, const float* imaginary, int half, const float* cosines,
              const float* sines, float* z) noexcept;
/// out[i] = a[i - 1] + a[i] + a[i + 1] for 1 <= i < count - 1
void sumOfThree(const float* a, int count, float* out) noexcept;
/// flags[k] = 1 where power[k] exceeds its two neighbours on both sides and `floor`, else 0;
/// a run of equal values counts at its first.
void flagMaxima(const float* power, int begin, int end, float floor, std::uint8_t* flags) noexcept;

/// out[i] = angle of (x[i], y[i])
void angles(const float* y, const float* x, int count, float* out) noexcept;
/// sine[i], cosine[i] of radians[i]
void sinesAndCosines(const float* radians, int count, float* sine, float* cosine) noexcept;

/// out[i] = clamp((sqrt(scale before[i] / now[i]) - low) / (high - low), 0, 1)
void amplitudeRatios(const float* before, const float* now, float scale, float low, float high,
                     int count, float* out) noexcept;

/// Complex factors of a convolution on bins: of source bins + 2, + 1, + 0, - 1, - 2.
constexpr int tapCount = 5;
/// Numbers kept for them: real, imaginary, real, ... and zeros up to whole vectors.
constexpr int tapValues = 12;

/// A run of source bins that moves as one.
struct BinRun {
    int begin;  ///< source bins [begin, end)
    int end;
    int shift;  ///< target bin = source bin + shift
    float taps[tapValues];
};

/// target += the convolution of the source with the taps, run after run.
void shiftRuns(const BinRun* runs, int count, const float* sourceReal, const float* sourceImaginary,
               float* targetReal, float* targetImaginary) noexcept;

/// out[i] = sum over k of taps[k] in[i + k], 0 <= i < count
void filter(const float* in, const float* taps, int length, int count, float* out) noexcept;
/// out[i rowCount + r] = rows[r rowLength + i], 0 <= i < count; rowCount = 1, 2, 4 or 8
void interleaveRows(const float* rows, int rowLength, int rowCount, int count, float* out) noexcept;
/// out[j] = 0.5 in[2 j] + sum over p of taps[p] (in[2 j - 2 p - 1] + in[2 j + 2 p + 1])
void halfBandDecimate(const float* in, const float* taps, int pairCount, int count,
                      float* out) noexcept;

}  // namespace tonvale::timepitch::kernels
