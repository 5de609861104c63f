// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/TimePitch/FrameTransform.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

namespace tonvale::timepitch {

FrameTransform::FrameTransform(const LayerDesign& design)
    : design_(design)
    , fft_(design.geometry.decimatedSize())
{
}

void FrameTransform::forward(const float* samples, const float* window, float* real,
                             float* imaginary, float* power) noexcept
{
    const int size = fft_.size();
    const int centre = design_.windows.phaseCentre() / design_.geometry.decimation;
    kernels::multiply(samples + centre, window + centre, size - centre, fft_.samples());
    kernels::multiply(samples, window, centre, fft_.samples() + size - centre);
    fft_.forward(design_.firstBin, design_.binCount, real, imaginary, power);
}

}  // namespace tonvale::timepitch
