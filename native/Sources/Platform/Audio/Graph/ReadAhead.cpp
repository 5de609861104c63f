// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/ReadAhead.h"

#include <new>

namespace tonvale {

ReadAhead::ReadAhead(AudioNode& source, const AudioFormat& format, std::uint32_t chunkFrames)
    : source_(source)
    , chunkFrames_(chunkFrames)
{
    for (Chunk& chunk : chunks_) {
        chunk.buffer = AudioPCMBuffer::create(format, chunkFrames);
        if (chunk.buffer == nullptr) {
            throw std::bad_alloc();
        }
    }
    thread_ = std::thread([this] { renderChunks(); });
}

ReadAhead::~ReadAhead()
{
    isStopping_ = true;
    free_.release();
    thread_.join();
}

const AudioPCMBuffer& ReadAhead::next()
{
    if (taken_ > 0) {
        free_.release();  // the chunk handed out before
    }
    ready_.acquire();
    const Chunk& chunk = chunks_[taken_++ % chunks_.size()];
    if (chunk.failure) {
        std::rethrow_exception(chunk.failure);
    }
    return *chunk.buffer;
}

void ReadAhead::renderChunks() noexcept
{
    for (std::size_t rendered = 0;; ++rendered) {
        free_.acquire();
        if (isStopping_) {
            return;
        }
        render(chunks_[rendered % chunks_.size()]);
        ready_.release();
    }
}

void ReadAhead::render(Chunk& chunk) noexcept
{
    try {
        chunk.failure = nullptr;
        source_.render(*chunk.buffer, chunkFrames_);
    } catch (...) {
        chunk.failure = std::current_exception();  // next() throws it where it can be told
    }
}

}  // namespace tonvale
