// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/TimePitch/Array.h"

#include <memory>

namespace tonvale::timepitch {

/// A discrete Fourier transform of real data with its own work space.
///
/// X[k] = sum over n of x[n] exp(-2 pi i k n / size), k = 0 ... size / 2; the inverse has no
/// factor, so the inverse of the forward transform is size times x.
///
/// Even and odd samples are taken as the real and imaginary parts of a complex sequence of half the
/// length; its transform is then taken apart (Numerical Recipes, "FFT of single real function").
/// FFTW does that too, but its complex transforms are so much faster than its real ones with
/// unmeasured plans (1024 complex: 0.76 us, 2048 real: 2.15 us) that it pays to do it here, where
/// bins that nobody needs can be left out.
/// @thread constructing and destroying: CONTROL or WORKER, several at once are safe;
///         transforming: any one thread at a time, no allocation or lock
class RealFft {
public:
    /// @param size  even; fastest when it has no prime factors above 3
    explicit RealFft(int size);

    [[nodiscard]] int size() const noexcept { return size_; }
    [[nodiscard]] int binCount() const noexcept { return size_ / 2 + 1; }

    /// `size` samples: input of forward() (kept), output of inverse().
    [[nodiscard]] float* samples() noexcept { return samples_.data(); }

    /// Transforms samples() and gives bins [first, first + count).
    /// @param power  the squared magnitudes of these bins are added to it
    void forward(int first, int count, float* real, float* imaginary, float* power) noexcept;
    /// Transforms binCount() bins to samples(); the imaginary parts of the first and the last one
    /// are taken for 0.
    void inverse(float* real, float* imaginary) noexcept;

private:
    struct PlanDeleter {
        void operator()(void* plan) const noexcept;
    };
    using Plan = std::unique_ptr<void, PlanDeleter>;

    int size_;
    Array<float> samples_;
    Array<float> bins_;  ///< of half the size: complex, interleaved; the first one again at the end
    Array<float> cosines_;  ///< cos(2 pi k / size)
    Array<float> sines_;
    Plan forwardPlan_;
    Plan inversePlan_;
};

}  // namespace tonvale::timepitch
