// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace tonvale::timepitch {

/// Treats numbers below 1e-38 as zero while it lives: decaying filters would otherwise become a
/// hundred times slower in silence.
/// @thread ANY; acts on the calling thread only
class DenormalGuard {
public:
#if defined(__SSE2__)
    DenormalGuard() noexcept : saved_(_mm_getcsr())
    {
        constexpr unsigned flushToZero = 0x8000;
        constexpr unsigned denormalsAreZero = 0x0040;
        _mm_setcsr(saved_ | flushToZero | denormalsAreZero);
    }
    ~DenormalGuard()
    {
        _mm_setcsr(saved_);
    }
#else
    DenormalGuard() noexcept = default;
    ~DenormalGuard() = default;
#endif
    DenormalGuard(const DenormalGuard&) = delete;
    DenormalGuard& operator=(const DenormalGuard&) = delete;

#if defined(__SSE2__)
private:
    unsigned saved_;
#endif
};

}  // namespace tonvale::timepitch
