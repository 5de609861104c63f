// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>
#include <mutex>

#include <fftw3.h>

#include "Platform/Audio/TimePitch/Numbers.h"
#include "Platform/Audio/TimePitch/RealFft.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

namespace tonvale::timepitch {

namespace {

/// FFTW's planner keeps process-wide tables and is its only part that is not thread-safe.
std::mutex& plannerMutex()
{
    static std::mutex mutex;
    return mutex;
}

fftwf_complex* asComplex(Array<float>& values)
{
    return reinterpret_cast<fftwf_complex*>(values.data());  // FFTW documents it as float[2]
}

}  // namespace

void RealFft::PlanDeleter::operator()(void* plan) const noexcept
{
    const std::lock_guard lock(plannerMutex());
    fftwf_destroy_plan(static_cast<fftwf_plan>(plan));
}

// FFTW_ESTIMATE: plans at once and the same on every run; measuring costs a second at each start.
RealFft::RealFft(int size)
    : size_(size)
    , samples_(size)
    , bins_(size + 2)
    , cosines_(size / 2 + 1)
    , sines_(size / 2 + 1)
{
    for (int k = 0; k <= size / 2; ++k) {
        cosines_[k] = static_cast<float>(std::cos(twoPi * k / size));
        sines_[k] = static_cast<float>(std::sin(twoPi * k / size));
    }
    const std::lock_guard lock(plannerMutex());
    forwardPlan_.reset(fftwf_plan_dft_1d(size / 2, asComplex(samples_), asComplex(bins_),
                                         FFTW_FORWARD, FFTW_ESTIMATE | FFTW_PRESERVE_INPUT));
    inversePlan_.reset(fftwf_plan_dft_1d(size / 2, asComplex(bins_), asComplex(samples_),
                                         FFTW_BACKWARD, FFTW_ESTIMATE | FFTW_DESTROY_INPUT));
}

void RealFft::forward(int first, int count, float* real, float* imaginary, float* power) noexcept
{
    fftwf_execute(static_cast<fftwf_plan>(forwardPlan_.get()));
    bins_[size_] = bins_[0];
    bins_[size_ + 1] = bins_[1];
    kernels::separateReal(bins_.data(), size_ / 2, cosines_.data(), sines_.data(), first, count,
                          real, imaginary, power);
}

void RealFft::inverse(float* real, float* imaginary) noexcept
{
    imaginary[0] = 0;
    imaginary[size_ / 2] = 0;
    kernels::joinReal(real, imaginary, size_ / 2, cosines_.data(), sines_.data(), bins_.data());
    fftwf_execute(static_cast<fftwf_plan>(inversePlan_.get()));
}

}  // namespace tonvale::timepitch
