// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioPCMBuffer.h"

#include <cstdint>

namespace tonvale {

/// Lets music that starts in the middle of a wave swell for 5 ms, or it would start with a click.
/// @thread one at a time
class FadeIn {
public:
    /// The next frame is the first of the swell.
    void begin(double sampleRate) noexcept;
    /// The next frames stay as they are.
    void skip() noexcept { place_ = length_; }

    /// Applies the gains to the valid frames of `buffer`; behind the swell that changes nothing.
    void process(AudioPCMBuffer& buffer) noexcept;

private:
    std::uint32_t length_ = 0;  // frames
    std::uint32_t place_ = 0;
};

}  // namespace tonvale
