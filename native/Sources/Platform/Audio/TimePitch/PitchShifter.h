// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <memory>
#include <span>

namespace tonvale::timepitch {

/// Shifts the pitch of a stream without changing its time: output frame n is made of the music
/// around input frame n - latencyFrames().
///
/// Samples are nominally in [-1, 1]; anything finite is allowed, NaN and infinities count as
/// silence. Output may exceed the input's peak by a few dB: limit it before an integer format. The
/// output depends on the input and on when the pitch was set, not on how the stream is cut into
/// blocks, nor on the number of threads. At 0 cents from the start (or since about four seconds)
/// the output is the delayed input itself.
///
/// A whole song, sample for sample in time: setPitch(), process() the song followed by
/// latencyFrames() of silence, and drop the first latencyFrames() of the output. A start in the
/// middle: reset(), prime() with what lies before, then process() from there; see prime().
/// @thread CONTROL or WORKER constructs and destroys; then one thread at a time calls
class PitchShifter {
public:
    struct Configuration {
        double sampleRate = 44100;  ///< Hz, above 0, at most 1e6; designed for 8000 ... 192000
        unsigned channelCount = 2;  ///< at least 1
        /// 0: all work is done by the caller (live). 1: the analysis runs on a second thread beside
        /// the synthesis; worth it when process() gets 16384 frames or more at once (export).
        unsigned workerThreads = 0;
    };

    /// Allocates everything; takes some ten milliseconds.
    /// @error std::invalid_argument for a configuration out of range; std::bad_alloc;
    ///        std::system_error when a thread is wanted and cannot be had
    explicit PitchShifter(const Configuration& configuration);
    ~PitchShifter();
    PitchShifter(PitchShifter&&) noexcept;
    PitchShifter& operator=(PitchShifter&&) noexcept;

    [[nodiscard]] const Configuration& configuration() const noexcept;

    /// Back to the start of a stream, as after construction; keeps the pitch. Clears memory only.
    void reset() noexcept;

    /// Sets the shift between process() calls: heard 80 ms of output later at the latest, with no
    /// click and no jump in level. Before the first frame it applies from the start.
    /// @param cents  clamped to +-1200; NaN is ignored
    void setPitch(float cents) noexcept;
    [[nodiscard]] float pitch() const noexcept;

    /// Frames from a sample's arrival to its place in the output; depends on the rate alone.
    [[nodiscard]] std::int64_t latencyFrames() const noexcept;

    /// Frames before a position that have an influence on the sound there.
    [[nodiscard]] std::int64_t prerollFrames() const noexcept;

    /// Like process() with the output thrown away, of any length. To start at song frame s: after
    /// reset(), prime with frames [max(0, s - prerollFrames()), s + latencyFrames()); the next
    /// output frame is then s.
    void prime(std::span<const float* const> in, unsigned frameCount) noexcept;

    /// Takes and gives `frameCount` frames, any number.
    /// @param in, out  one pointer per channel; the memory must not overlap
    /// With workerThreads == 0 there is no allocation, lock, system call or exception.
    void process(std::span<const float* const> in, std::span<float* const> out,
                 unsigned frameCount) noexcept;

private:
    class Engine;
    std::unique_ptr<Engine> engine_;
};

}  // namespace tonvale::timepitch
