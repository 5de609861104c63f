// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFormat.h"
#include "Platform/Audio/AudioPCMBuffer.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace RubberBand {
class RubberBandStretcher;
}

namespace tonvale {

/// Shifts the pitch of a stream at unchanged tempo, frame for frame: as many frames come out as
/// go in, later by a constant latency. The only place that knows the Rubber Band library.
/// @thread construction: CONTROL; the rest: WORKER (the library allocates now and then)
class RubberBandShifter {
public:
    explicit RubberBandShifter(const AudioFormat& format);
    ~RubberBandShifter();

    /// Output frame n sounds what input frame n - latencyFrames() does, at any pitch.
    [[nodiscard]] std::uint32_t latencyFrames() const noexcept { return latency_; }

    /// Heard within a few milliseconds of output. @param cents  -1200 ... 1200
    void setPitch(float cents);

    /// Replaces the valid frames of `buffer` by the shifted stream's next ones. The output does
    /// not depend on how the stream is cut into buffers.
    void process(AudioPCMBuffer& buffer);

private:
    using Channels = std::vector<std::vector<float>>;

    void start();
    void shiftBlock();
    void collect();
    void takeOutput(AudioPCMBuffer& buffer);

    std::unique_ptr<RubberBand::RubberBandStretcher> stretcher_;
    std::uint32_t latency_;
    bool isStarted_ = false;
    std::size_t framesToDrop_ = 0;  // of the library's own delay
    Channels block_;                // input waits here until a whole block is there
    std::size_t blockFill_ = 0;
    Channels shifted_;  // output waits here, oldest first
    std::size_t shiftedFill_ = 0;
};

}  // namespace tonvale
