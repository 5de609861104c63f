// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFormat.h"
#include "Platform/Audio/AudioPCMBuffer.h"
#include "Platform/Audio/Graph/RateConverter.h"
#include "Platform/Audio/Graph/StereoMix.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tonvale {

/// Turns rendered blocks into what a device takes: two interleaved channels at the device's rate.
/// Stereo at that rate comes out as it went in; nothing comes out early or late.
/// @thread one at a time
class DeviceConverter {
public:
    /// @param source             of the blocks
    /// @param maximumFrameCount  of one block
    /// @error PlatformError when there is no memory
    DeviceConverter(const AudioFormat& source, double deviceRate, std::uint32_t maximumFrameCount);

    /// The most frames that one convert() or finish() gives.
    [[nodiscard]] std::uint32_t maximumOutput() const noexcept;

    /// Back to the start of a stream. @error PlatformError when there is no memory
    void reset();

    /// The frames that became complete with the valid frames of `buffer`, until the next call.
    /// @error PlatformError when there is no memory
    [[nodiscard]] std::span<const float> convert(const AudioPCMBuffer& buffer);

    /// The frames that were still waiting for later ones; then reset() is due.
    [[nodiscard]] std::span<const float> finish();

private:
    [[nodiscard]] std::span<const float> interleave(std::uint32_t frames) noexcept;

    StereoMix mix_;
    std::array<std::vector<float>, StereoMix::sides> sides_;
    std::vector<float> interleaved_;
    std::optional<RateConverter> rate_;  // where the rates differ
};

}  // namespace tonvale
