// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>

#include "Platform/Audio/TimePitch/FastMath.h"
#include "Platform/Audio/TimePitch/VectorClones.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

namespace tonvale::timepitch::kernels {

namespace {

constexpr int lanes = 8;  // one register of x86-64-v3, two of the baseline

/// `lanes` numbers anywhere in memory, worked on at once.
using Vector = float __attribute__((vector_size(lanes * sizeof(float)), aligned(4), may_alias));

inline __attribute__((always_inline)) Vector* asVector(float* values)
{
    return reinterpret_cast<Vector*>(values);
}
inline __attribute__((always_inline)) const Vector* asVector(const float* values)
{
    return reinterpret_cast<const Vector*>(values);
}

}  // namespace

TONVALE_VECTOR_CLONES
void multiply(const float* __restrict a, const float* __restrict b, int count,
              float* __restrict out) noexcept
{
    for (int i = 0; i < count; ++i) {
        out[i] = a[i] * b[i];
    }
}

TONVALE_VECTOR_CLONES
void multiplySubtract(const float* __restrict a, const float* __restrict b, int count,
                      float* __restrict out) noexcept
{
    for (int i = 0; i < count; ++i) {
        out[i] -= a[i] * b[i];
    }
}

TONVALE_VECTOR_CLONES
void multiplyAdd(const float* __restrict a, const float* __restrict b, int count,
                 float* __restrict out) noexcept
{
    for (int i = 0; i < count; ++i) {
        out[i] += a[i] * b[i];
    }
}

TONVALE_VECTOR_CLONES
void add(const float* __restrict a, int count, float* __restrict out) noexcept
{
    for (int i = 0; i < count; ++i) {
        out[i] += a[i];
    }
}

TONVALE_VECTOR_CLONES
void sanitise(const float* __restrict in, int count, float* __restrict out) noexcept
{
    constexpr float largest = 65536;
    constexpr float largestFinite = 3.4028235e38F;
    for (int i = 0; i < count; ++i) {
        float x = std::fabs(in[i]) <= largestFinite ? in[i] : 0;  // false for NaN
        x = x > largest ? largest : x;
        out[i] = x < -largest ? -largest : x;
    }
}

namespace {

using Indices = int __attribute__((vector_size(lanes * sizeof(int))));

/// Complex numbers next to each other in memory, real and imaginary parts apart.
struct ComplexVector {
    Vector real;
    Vector imaginary;
};

inline __attribute__((always_inline)) ComplexVector takeApart(const float* z)
{
    const Vector first = *asVector(z);
    const Vector second = *asVector(z + lanes);
    return {__builtin_shuffle(first, second, Indices{0, 2, 4, 6, 8, 10, 12, 14}),
            __builtin_shuffle(first, second, Indices{1, 3, 5, 7, 9, 11, 13, 15})};
}

/// The same, the last one first.
inline __attribute__((always_inline)) ComplexVector takeApartBackwards(const float* z)
{
    const Vector first = *asVector(z);
    const Vector second = *asVector(z + lanes);
    return {__builtin_shuffle(first, second, Indices{14, 12, 10, 8, 6, 4, 2, 0}),
            __builtin_shuffle(first, second, Indices{15, 13, 11, 9, 7, 5, 3, 1})};
}

}  // namespace

// The compiler has no vectors for numbers taken backwards in pairs, so whole vectors are written
// out.
TONVALE_VECTOR_CLONES
void separateReal(const float* __restrict z, int half, const float* __restrict cosines,
                  const float* __restrict sines, int first, int count, float* __restrict real,
                  float* __restrict imaginary, float* __restrict power) noexcept
{
    const float* __restrict up = z + 2 * first;
    const float* __restrict down = z + 2 * (half - first);
    const int whole = count - count % lanes;
    for (int i = 0; i < whole; i += lanes) {
        const auto [a, b] = takeApart(up + 2 * i);
        const auto [c, d] = takeApartBackwards(down - 2 * (i + lanes - 1));
        const Vector cosine = *asVector(cosines + first + i);
        const Vector sine = *asVector(sines + first + i);
        const Vector re = 0.5F * ((a + c) + ((b + d) * cosine - (a - c) * sine));
        const Vector im = 0.5F * ((b - d) - ((a - c) * cosine + (b + d) * sine));
        *asVector(real + i) = re;
        *asVector(imaginary + i) = im;
        *asVector(power + i) += re * re + im * im;
    }
    for (int i = whole; i < count; ++i) {
        const float a = up[2 * i];
        const float b = up[2 * i + 1];
        const float c = down[-2 * i];
        const float d = down[-2 * i + 1];
        const float cosine = cosines[first + i];
        const float sine = sines[first + i];
        const float re = 0.5F * ((a + c) + ((b + d) * cosine - (a - c) * sine));
        const float im = 0.5F * ((b - d) - ((a - c) * cosine + (b + d) * sine));
        real[i] = re;
        imaginary[i] = im;
        power[i] += re * re + im * im;
    }
}

TONVALE_VECTOR_CLONES
void joinReal(const float* __restrict real, const float* __restrict imaginary, int half,
              const float* __restrict cosines, const float* __restrict sines,
              float* __restrict z) noexcept
{
    const float* __restrict realDown = real + half;
    const float* __restrict imaginaryDown = imaginary + half;
    for (int k = 0; k < half; ++k) {
        const float a = real[k];
        const float b = imaginary[k];
        const float c = realDown[-k];
        const float d = imaginaryDown[-k];
        z[2 * k] = (a + c) - ((a - c) * sines[k] + (b + d) * cosines[k]);
        z[2 * k + 1] = (b - d) + ((a - c) * cosines[k] - (b + d) * sines[k]);
    }
}

TONVALE_VECTOR_CLONES
void sumOfThree(const float* __restrict a, int count, float* __restrict out) noexcept
{
    for (int i = 1; i < count - 1; ++i) {
        out[i] = a[i - 1] + a[i] + a[i + 1];
    }
}

TONVALE_VECTOR_CLONES
void flagMaxima(const float* __restrict power, int begin, int end, float floor,
                std::uint8_t* __restrict flags) noexcept
{
    for (int k = begin; k < end; ++k) {
        const float p = power[k];
        const bool left = (p > power[k - 1]) & (p > power[k - 2]);
        const bool right = (p >= power[k + 1]) & (p >= power[k + 2]);
        flags[k] = static_cast<std::uint8_t>(left & right & (p > floor));
    }
}

TONVALE_VECTOR_CLONES
void angles(const float* __restrict y, const float* __restrict x, int count,
            float* __restrict out) noexcept
{
    for (int i = 0; i < count; ++i) {
        out[i] = fastAngle(y[i], x[i]);
    }
}

TONVALE_VECTOR_CLONES
void sinesAndCosines(const float* __restrict radians, int count, float* __restrict sine,
                     float* __restrict cosine) noexcept
{
    for (int i = 0; i < count; ++i) {
        const SineCosine value = fastSineCosine(radians[i]);
        sine[i] = value.sine;
        cosine[i] = value.cosine;
    }
}

TONVALE_VECTOR_CLONES
void amplitudeRatios(const float* __restrict before, const float* __restrict now, float scale,
                     float low, float high, int count, float* __restrict out) noexcept
{
    constexpr float tiny = 1e-20F;
    const float slope = 1 / (high - low);
    for (int i = 0; i < count; ++i) {
        float share = (std::sqrt(scale * before[i] / (now[i] + tiny)) - low) * slope;
        share = share < 0 ? 0 : share;
        out[i] = share > 1 ? 1 : share;
    }
}

// Runs are only a few bins long, so each is done in whole vectors and what lies behind its end is
// replaced by zeros; the callers' arrays have room for that (overrun).
TONVALE_VECTOR_CLONES
void shiftRuns(const BinRun* runs, int count, const float* __restrict sourceReal,
               const float* __restrict sourceImaginary, float* __restrict targetReal,
               float* __restrict targetImaginary) noexcept
{
    for (int index = 0; index < count; ++index) {
        const BinRun& run = runs[index];
        for (int bin = run.begin; bin < run.end; bin += lanes) {
            const int left = run.end - bin;
            const float* __restrict re = sourceReal + bin;
            const float* __restrict im = sourceImaginary + bin;
            float* __restrict outReal = targetReal + bin + run.shift;
            float* __restrict outImaginary = targetImaginary + bin + run.shift;
            for (int v = 0; v < lanes; ++v) {
                float real = 0;
                float imaginary = 0;
                for (int tap = 0; tap < tapCount; ++tap) {
                    const float a = run.taps[2 * tap];
                    const float b = run.taps[2 * tap + 1];
                    const int source = v + tapCount / 2 - tap;
                    real += a * re[source] - b * im[source];
                    imaginary += a * im[source] + b * re[source];
                }
                outReal[v] += v < left ? real : 0;
                outImaginary[v] += v < left ? imaginary : 0;
            }
        }
    }
}

// Four vectors of sums stay in registers while the taps go by; the compiler does not find this by
// itself.
TONVALE_VECTOR_CLONES
void filter(const float* in, const float* taps, int length, int count, float* out) noexcept
{
    constexpr int vectors = 4;
    constexpr int stride = vectors * lanes;
    const int whole = count - count % stride;
    for (int first = 0; first < whole; first += stride) {
        Vector sum[vectors] = {};
        for (int k = 0; k < length; ++k) {
            for (int v = 0; v < vectors; ++v) {
                sum[v] += taps[k] * *asVector(in + first + k + v * lanes);
            }
        }
        for (int v = 0; v < vectors; ++v) {
            *asVector(out + first + v * lanes) = sum[v];
        }
    }
    for (int first = whole; first < count; ++first) {
        float sum = 0;
        for (int k = 0; k < length; ++k) {
            sum += taps[k] * in[first + k];
        }
        out[first] = sum;
    }
}

namespace {

template <int rowCount>
inline __attribute__((always_inline)) void interleave(const float* __restrict rows, int rowLength,
                                                      int count, float* __restrict out)
{
    for (int i = 0; i < count; ++i) {
        for (int row = 0; row < rowCount; ++row) {
            out[i * rowCount + row] = rows[row * rowLength + i];
        }
    }
}

}  // namespace

TONVALE_VECTOR_CLONES
void interleaveRows(const float* rows, int rowLength, int rowCount, int count, float* out) noexcept
{
    switch (rowCount) {
    case 1:
        return interleave<1>(rows, rowLength, count, out);
    case 2:
        return interleave<2>(rows, rowLength, count, out);
    case 4:
        return interleave<4>(rows, rowLength, count, out);
    default:
        return interleave<8>(rows, rowLength, count, out);
    }
}

TONVALE_VECTOR_CLONES
void halfBandDecimate(const float* __restrict in, const float* __restrict taps, int pairCount,
                      int count, float* __restrict out) noexcept
{
    for (int j = 0; j < count; ++j) {
        out[j] = 0.5F * in[2 * j];
    }
    for (int p = 0; p < pairCount; ++p) {
        const float tap = taps[p];
        const float* __restrict before = in - 2 * p - 1;
        const float* __restrict after = in + 2 * p + 1;
        for (int j = 0; j < count; ++j) {
            out[j] += tap * (before[2 * j] + after[2 * j]);
        }
    }
}

}  // namespace tonvale::timepitch::kernels
