// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Graph/AudioNode.h"
#include "Platform/Audio/Graph/LookaheadLimiter.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace tonvale {

/// The end of the graph: the sound of its input, kept within full scale. It renders its input
/// ahead by the limiter's latency, so what comes out is not late.
class AudioMixerNode final : public AudioNode {
public:
    void prepare(const RenderSettings& settings) override;
    /// Lets the limiter hear what lies before the beginning, as much of it as can hold the level
    /// down there.
    std::uint32_t reset(std::uint32_t prerollFrames) override;
    void render(AudioPCMBuffer& buffer, std::uint32_t frameCount) override;

private:
    void runAhead(AudioPCMBuffer& scratch);

    std::optional<LookaheadLimiter> limiter_;
    std::uint32_t maximumFrameCount_ = 0;
    std::uint32_t framesToRunAhead_ = 0;
};

}  // namespace tonvale
