// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Output/AudioOutput.h"
#include "Platform/Audio/Output/PulseStream.h"
#include "Platform/Audio/Output/QueuedFrames.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <string>

struct pa_defer_event;
struct pa_time_event;

namespace tonvale {

/// The desktop's sound server, PulseAudio or what speaks its language.
///
/// The stream is paused while the source has nothing, so that an idle program costs nothing. What
/// the server holds is kept in a copy, from which discardQueued() makes its fade. The library's
/// main loop runs our callbacks; its lock guards everything here that is not atomic.
class PulseAudioOutput final : public AudioOutput, private PulseStreamListener {
public:
    PulseAudioOutput() = default;
    ~PulseAudioOutput() override;
    PulseAudioOutput(const PulseAudioOutput&) = delete;
    PulseAudioOutput& operator=(const PulseAudioOutput&) = delete;

    void start(AudioOutputSource& source) override;
    [[nodiscard]] bool isRunning() const noexcept override { return isRunning_; }
    [[nodiscard]] AudioFormat format() const noexcept override { return format_; }
    void discardQueued() noexcept override;
    void framesReady() noexcept override;
    [[nodiscard]] std::uint64_t underrunCount() const noexcept override { return underrunCount_; }
    void setTitle(std::string_view title) override;

private:
    using Clock = std::chrono::steady_clock;

    void streamHasRoom() noexcept override;
    void streamRanDry(std::int64_t end) noexcept override;
    void streamIsLost() noexcept override { isRunning_ = false; }

    void startMainLoop();
    void close() noexcept;
    void prepare(AudioOutputSource& source);

    void fillSoon() noexcept;
    void fill() noexcept;
    [[nodiscard]] bool pour() noexcept;
    [[nodiscard]] std::int64_t pourOnce(std::int64_t room) noexcept;
    void noteFrames() noexcept;
    void rest() noexcept;
    void wakeIn(std::chrono::milliseconds time) noexcept;

    void takeBack() noexcept;
    void write(std::int64_t first, std::int64_t end) noexcept;
    [[nodiscard]] std::int64_t framesIn(std::chrono::milliseconds time) const noexcept;

    std::unique_ptr<PulseMainLoop> loop_;
    pa_time_event* timer_ = nullptr;    // looks again at a source that had too few frames
    pa_defer_event* wakeUp_ = nullptr;  // looks again as soon as possible
    std::unique_ptr<PulseStream> stream_;
    AudioOutputSource* source_ = nullptr;
    AudioFormat format_;
    std::string title_ = "Tonvale";

    QueuedFrames queue_;
    std::int64_t end_ = 0;           // the frame behind the last one that the source gave
    bool isFollowing_ = false;       // the next frames belong behind those: none were taken back
    std::int64_t followedFrom_ = 0;  // the frame behind the first of those that came at once
    bool isDry_ = true;              // the device has nothing left, or may have
    bool isStarving_ = false;        // it has nothing left of those
    bool isDiscarding_ = false;
    Clock::time_point lastFrames_;

    std::atomic<bool> isRunning_ = false;
    std::atomic<bool> isWaiting_ = false;  // for framesReady()
    std::atomic<std::uint64_t> underrunCount_ = 0;
};

}  // namespace tonvale
