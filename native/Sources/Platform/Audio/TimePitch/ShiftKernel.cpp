// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <utility>

#include "Platform/Audio/TimePitch/ShiftKernel.h"

namespace tonvale::timepitch {

namespace {

using Complex = std::complex<double>;
constexpr std::size_t tapCount = kernels::tapCount;
using Taps = std::array<Complex, tapCount>;
using Matrix = std::array<Taps, tapCount>;

/// One point of the time axis on which the fit is made.
struct Point {
    double x;       ///< radians of the FFT circle from the phase centre
    double weight;  ///< window product
    Taps basis;     ///< exp(-i x (c - t)), what tap t does: it takes source bin k + c - t
};

constexpr std::size_t pointCount = 96;
using Grid = std::array<Point, pointCount>;

Taps basisAt(double x)
{
    Taps basis;
    for (std::size_t tap = 0; tap < tapCount; ++tap) {
        basis[tap] = std::polar(1.0, (static_cast<double>(tap) - tapCount / 2) * x);
    }
    return basis;
}

Grid makeGrid(const LayerGeometry& geometry, const LayerWindows& windows)
{
    Grid grid;
    const double release = geometry.release;
    for (std::size_t index = 0; index < pointCount; ++index) {
        const double position = (static_cast<double>(index) + 0.5) * 2 / pointCount - 1;
        const double c = std::cos(pi / 2 * position);
        const double frame = position * release - windows.phaseOffset();
        const double x = twoPi * frame / geometry.size();
        grid[index] = {x, c * c * c * c, basisAt(x)};
    }
    return grid;
}

/// Solves matrix * taps = right by Gauss-Jordan elimination; the matrix is Hermitian and positive,
/// so no pivoting is needed.
Taps solve(Matrix matrix, Taps right)
{
    for (std::size_t pivot = 0; pivot < tapCount; ++pivot) {
        const Complex divisor = matrix[pivot][pivot];
        for (Complex& value : matrix[pivot]) {
            value /= divisor;
        }
        right[pivot] /= divisor;
        for (std::size_t row = 0; row < tapCount; ++row) {
            if (row == pivot) {
                continue;
            }
            const Complex factor = matrix[row][pivot];
            for (std::size_t column = 0; column < tapCount; ++column) {
                matrix[row][column] -= factor * matrix[pivot][column];
            }
            right[row] -= factor * right[pivot];
        }
    }
    return right;
}

Matrix normalMatrix(const Grid& grid)
{
    Matrix matrix{};
    for (const Point& point : grid) {
        for (std::size_t row = 0; row < tapCount; ++row) {
            for (std::size_t column = 0; column < tapCount; ++column) {
                matrix[row][column] +=
                    point.weight * std::conj(point.basis[row]) * point.basis[column];
            }
        }
    }
    return matrix;
}

/// Whether the outer taps leave steady tones without ripple at the hop rate.
bool outerTapsAreSafe(const LayerGeometry& geometry)
{
    const int size = geometry.size();
    const double heardBins = static_cast<double>(size) / geometry.release;
    const double hopRate = static_cast<double>(size) / geometry.hop;
    return heardBins + kernels::tapCount / 2 < hopRate;
}

/// Makes the outer taps cost so much that the fit leaves them at zero.
void forbidOuterTaps(Matrix& matrix)
{
    constexpr double prohibitive = 1e12;
    matrix.front().front() += prohibitive;
    matrix.back().back() += prohibitive;
}

Taps fit(const Grid& grid, const Matrix& matrix, double offset, double chirp)
{
    Taps right{};
    for (const Point& point : grid) {
        const double phase = offset * point.x + chirp * (1 - std::cos(point.x));
        const Complex wanted = std::polar(point.weight, phase);
        for (std::size_t tap = 0; tap < tapCount; ++tap) {
            right[tap] += wanted * std::conj(point.basis[tap]);
        }
    }
    return solve(matrix, right);
}

}  // namespace

ShiftKernel::ShiftKernel(const LayerGeometry& geometry, const LayerWindows& windows)
    : table_(chirpRows * offsetColumns * valuesPerEntry)
{
    constexpr int steadyRow = chirpRows / 2;
    const Grid grid = makeGrid(geometry, windows);
    const Matrix matrix = normalMatrix(grid);
    Matrix steadyMatrix = matrix;
    if (!outerTapsAreSafe(geometry)) {
        forbidOuterTaps(steadyMatrix);
    }
    for (int row = 0; row < chirpRows; ++row) {
        const double chirp = static_cast<double>(row - steadyRow) / chirpStepsPerRadian;
        for (int column = 0; column < offsetColumns; ++column) {
            const double offset = static_cast<double>(column) / offsetSteps - 0.5;
            float* entry = table_.data() + (row * offsetColumns + column) * valuesPerEntry;
            for (const Complex& tap :
                 fit(grid, row == steadyRow ? steadyMatrix : matrix, offset, chirp)) {
                *entry++ = static_cast<float>(tap.real());
                *entry++ = static_cast<float>(tap.imag());
            }
        }
    }
}

void ShiftKernel::taps(float offset, float chirp, float* out) const noexcept
{
    const float x = (offset + 0.5F) * offsetSteps;
    const float y = (chirp + chirpLimit) * chirpStepsPerRadian;
    const int column = std::min(static_cast<int>(x), offsetSteps - 1);
    const int row = std::min(static_cast<int>(y), chirpRows - 2);
    const float u = x - static_cast<float>(column);
    const float v = y - static_cast<float>(row);
    const float* __restrict near = table_.data() + (row * offsetColumns + column) * valuesPerEntry;
    const float* __restrict far = near + offsetColumns * valuesPerEntry;
    float* __restrict taps = out;
    for (int i = 0; i < valuesPerEntry; ++i) {  // the zeros too: they make it whole vectors
        const float a = near[i] + u * (near[i + valuesPerEntry] - near[i]);
        const float b = far[i] + u * (far[i + valuesPerEntry] - far[i]);
        taps[i] = a + v * (b - a);
    }
}

}  // namespace tonvale::timepitch
