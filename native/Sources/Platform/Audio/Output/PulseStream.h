// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Output/PulseConnection.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

struct pa_stream;

namespace tonvale {

/// What a stream tells its owner, in the main loop's thread. @thread AUDIO
class PulseStreamListener {
public:
    virtual void streamHasRoom() noexcept = 0;
    /// The device took the last frame it had, the one before `end`.
    virtual void streamRanDry(std::int64_t end) noexcept = 0;
    virtual void streamIsLost() noexcept = 0;

protected:
    ~PulseStreamListener() = default;
};

/// One stereo stream of 32-bit floats at the server, on a connection of its own; it is paused at
/// first. Frames are counted from the stream's first.
/// Every function is called with the main loop's lock held.
class PulseStream {
public:
    /// Returns once the server has opened the stream. @error PlatformError
    PulseStream(const PulseMainLoop& loop, const std::string& title, PulseStreamListener& listener,
                const Deadline& deadline);

    [[nodiscard]] std::uint32_t sampleRate() const noexcept { return sampleRate_; }

    /// How many frames the server waits for.
    [[nodiscard]] std::int64_t room() const noexcept;

    /// The first frame that the device will not have taken yet when a write reaches the server:
    /// what is written from there on is heard in full. Reckoned from the server's last account.
    [[nodiscard]] std::int64_t firstFreeFrame() const noexcept;

    /// Has the server tell its place now. It may not answer; then the last account stays.
    void refreshPlace(const Deadline& deadline);

    /// Hands over interleaved frames that begin at `frame`; those that come too late are dropped.
    void write(std::int64_t frame, std::span<const float> samples) noexcept;

    [[nodiscard]] bool isPaused() const noexcept { return isPaused_; }
    void setPaused(bool isPaused) noexcept;

    void setTitle(const std::string& title);

private:
    struct Disconnect {
        void operator()(pa_stream* stream) const noexcept;
    };

    void create(const std::string& title);
    void observe();
    void open(const Deadline& deadline);
    [[nodiscard]] std::int64_t framesIn(std::int64_t microseconds) const noexcept;

    PulseConnection connection_;
    PulseStreamListener& listener_;
    std::uint32_t sampleRate_;
    std::unique_ptr<pa_stream, Disconnect> stream_;
    std::int64_t end_ = 0;  // where the next frame would go by itself
    bool isPaused_ = true;
    std::chrono::microseconds roundTrip_{0};  // of the last account asked for
};

}  // namespace tonvale
