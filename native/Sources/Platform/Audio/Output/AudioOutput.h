// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFormat.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string_view>

namespace tonvale {

/// Where a device takes its frames from.
class AudioOutputSource {
public:
    virtual ~AudioOutputSource() = default;

    /// Copies the next frames into `samples` and returns how many it had: all that fit, or fewer
    /// when no more are ready yet, or none while nothing plays.
    /// @param samples  interleaved, a whole number of frames of the output's format
    /// @thread AUDIO - no allocation, lock, wait, log or file
    [[nodiscard]] virtual std::uint32_t read(std::span<float> samples) noexcept = 0;
};

/// A loudspeaker: the desktop's default device, opened as one stream that takes its frames from a
/// source whenever it has room, and plays silence while there are none.
/// @thread CONTROL unless noted
class AudioOutput {
public:
    /// The desktop's sound server, or what replaceFactory() put in its place; not open yet.
    [[nodiscard]] static std::unique_ptr<AudioOutput> create();

    /// For tests: what create() answers from now on; an empty function brings the server back.
    static void replaceFactory(std::function<std::unique_ptr<AudioOutput>()> factory);

    AudioOutput() = default;
    AudioOutput(const AudioOutput&) = delete;
    AudioOutput& operator=(const AudioOutput&) = delete;
    virtual ~AudioOutput() = default;  ///< closes the stream; `source` is not asked any more

    /// Opens the stream and starts taking frames from `source`, which outlives this object.
    /// Waits for the server, but no longer than three seconds. May be called again when the stream
    /// was lost.
    /// @error PlatformError in the sound server's words
    virtual void start(AudioOutputSource& source) = 0;

    /// True from a successful start() on until the server or the stream is lost. @thread ANY
    [[nodiscard]] virtual bool isRunning() const noexcept = 0;

    /// Of the running stream: the device's own rate, and two channels.
    [[nodiscard]] virtual AudioFormat format() const noexcept = 0;

    /// Takes back what was read but not yet heard, as far as the device has not taken it: it fades
    /// out within 5 ms, 10 to 20 ms from now. What the source gives after this call follows. When
    /// this returns, no read() that began before it is under way. Waits for the server, but no
    /// longer than 20 ms; mostly it takes less than one.
    virtual void discardQueued() noexcept = 0;

    /// Tells the device that the source has frames again after it had too few. The device looks
    /// again by itself for a quarter of a second, and from then on waits for this. Costs next to
    /// nothing where it is not needed. @thread ANY but AUDIO
    virtual void framesReady() noexcept = 0;

    /// How often the device ran dry between two frames of the source that no discardQueued() lies
    /// between. @thread ANY
    [[nodiscard]] virtual std::uint64_t underrunCount() const noexcept = 0;

    /// What the desktop's mixer shows for the stream, UTF-8 or not; may be set before start().
    virtual void setTitle(std::string_view title) = 0;
};

}  // namespace tonvale
