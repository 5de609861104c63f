// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFormat.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace tonvale {

/// A block of frames in the format of AudioFormat.h. The capacity is fixed at creation;
/// `frameLength` says how many of its frames are valid.
class AudioPCMBuffer {
public:
    /// @return nothing when the format is not usable (no channels, more than 64, rate not positive
    ///         and finite), the capacity is 0, or the memory cannot be had
    [[nodiscard]] static std::unique_ptr<AudioPCMBuffer> create(const AudioFormat& format,
                                                                std::uint32_t frameCapacity);

    [[nodiscard]] const AudioFormat& format() const noexcept { return format_; }
    [[nodiscard]] std::uint32_t frameCapacity() const noexcept { return frameCapacity_; }
    [[nodiscard]] std::uint32_t frameLength() const noexcept { return frameLength_; }

    /// @param frames  0 ... frameCapacity(); anything else aborts
    void setFrameLength(std::uint32_t frames) noexcept;

    /// All frameCapacity() samples of one channel, valid or not.
    [[nodiscard]] std::span<float> channel(std::uint32_t index) noexcept;
    [[nodiscard]] std::span<const float> channel(std::uint32_t index) const noexcept;

    /// Sets every sample of frames [first, first + count) to 0.
    void silence(std::uint32_t first, std::uint32_t count) noexcept;

private:
    AudioPCMBuffer(const AudioFormat& format, std::uint32_t frameCapacity);

    AudioFormat format_;
    std::uint32_t frameCapacity_;
    std::uint32_t frameLength_ = 0;
    std::vector<float> samples_;
};

}  // namespace tonvale
