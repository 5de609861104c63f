// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Graph/AudioNode.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace tonvale::test {

using Signal = std::vector<float>;

/// A source that plays a given signal on every channel, and silence after it.
class SignalNode final : public AudioNode {
public:
    explicit SignalNode(Signal signal) : signal_(std::move(signal)) {}

    void render(AudioPCMBuffer& buffer, std::uint32_t frameCount) override
    {
        buffer.setFrameLength(frameCount);
        buffer.silence(0, frameCount);
        const std::size_t count = std::min<std::size_t>(frameCount, signal_.size() - next_);
        for (std::uint32_t channel = 0; channel < buffer.format().channelCount; ++channel) {
            std::copy_n(signal_.begin() + static_cast<std::ptrdiff_t>(next_), count,
                        buffer.channel(channel).begin());
        }
        next_ += count;
    }

    /// How many frames of the signal were asked for so far.
    [[nodiscard]] std::size_t framesTaken() const noexcept { return next_; }

private:
    Signal signal_;
    std::size_t next_ = 0;
};

/// Renders `frameCount` frames of a prepared node in blocks; returns the first channel.
inline Signal renderAll(AudioNode& node, const AudioFormat& format, std::size_t frameCount,
                        std::uint32_t blockFrames = 4096)
{
    Signal result;
    const auto buffer = AudioPCMBuffer::create(format, blockFrames);
    while (result.size() < frameCount) {
        const auto frames = static_cast<std::uint32_t>(
            std::min<std::size_t>(blockFrames, frameCount - result.size()));
        node.render(*buffer, frames);
        const auto valid = buffer->channel(0).first(buffer->frameLength());
        result.insert(result.end(), valid.begin(), valid.end());
    }
    return result;
}

}  // namespace tonvale::test
