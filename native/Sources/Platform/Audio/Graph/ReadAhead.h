// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioPCMBuffer.h"
#include "Platform/Audio/Graph/AudioNode.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <semaphore>
#include <thread>

namespace tonvale {

/// Renders a node on a thread of its own, one chunk ahead of whoever takes the chunks, so that
/// decoding a song and shifting it go on beside each other.
/// @thread one WORKER constructs, takes and destroys; nobody else may render the node meanwhile
class ReadAhead {
public:
    /// Starts to render. @param source  prepared for chunks of `chunkFrames` frames
    ReadAhead(AudioNode& source, const AudioFormat& format, std::uint32_t chunkFrames);
    /// Waits for the chunk being rendered.
    ~ReadAhead();
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    /// Waits for the next chunk. @return it, all its frames valid; it stays until the next call
    /// @error what the node's render() threw for this chunk
    [[nodiscard]] const AudioPCMBuffer& next();

private:
    struct Chunk {
        std::unique_ptr<AudioPCMBuffer> buffer;
        std::exception_ptr failure;
    };

    void renderChunks() noexcept;
    void render(Chunk& chunk) noexcept;

    AudioNode& source_;
    std::uint32_t chunkFrames_;
    std::array<Chunk, 2> chunks_;  // one is taken while the other is rendered
    std::size_t taken_ = 0;        // how many were handed out
    std::atomic<bool> isStopping_ = false;
    std::counting_semaphore<3> free_{2};  // one more than chunks: the last one is to stop
    std::counting_semaphore<2> ready_{0};
    std::thread thread_;  // last: it uses all of the above
};

}  // namespace tonvale
