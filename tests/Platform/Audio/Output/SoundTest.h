// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Output/AudioOutput.h"
#include "Support/PulseServer.h"
#include "Support/Recorder.h"
#include "Support/ToneSource.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <numbers>
#include <vector>

namespace tonvale::test {

/// A machine with too much to do leaves gaps in a recording, whoever plays. What must be right to
/// the last bit may therefore be tried so often until it is; what is wrong never is.
constexpr int undisturbedRounds = 8;

/// A server of our own, an output that may be started on it, and a source.
class SoundTest : public testing::Test {
protected:
    void SetUp() override
    {
        if (!server.start()) {
            GTEST_SKIP() << "PulseAudio does not start here";
        }
    }

    /// Begins a tone as a player does.
    void play(double frequency, std::int64_t frameCount = ToneSource::unlimited)
    {
        source.setTone(frequency);
        source.offer(frameCount);
        output->framesReady();
    }

    /// As a player does: first its own frames are gone, then the device's.
    void stop()
    {
        source.offer(0);
        output->discardQueued();
    }

    PulseServer server{48000, false};
    ToneSource source;
    std::unique_ptr<AudioOutput> output = AudioOutput::create();
};

/// For Recorder::waitForSound.
inline bool isSounding(const std::vector<float>& samples)
{
    return samples.back() != 0.0F;
}

/// The first frame from `from` on that is not silent, or the end.
inline std::size_t soundIn(const std::vector<float>& samples, std::size_t from = 0)
{
    const auto begin = samples.begin() + static_cast<std::ptrdiff_t>(from);
    const auto found = std::find_if(begin, samples.end(), [](float s) { return s != 0.0F; });
    return static_cast<std::size_t>(found - samples.begin());
}

/// How many frames from `from` on are, bit by bit, the source's tone from its beginning.
inline std::size_t toneIn(const std::vector<float>& samples, std::size_t from,
                          const ToneSource& source, double frequency)
{
    std::size_t count = 0;
    while (from + count < samples.size()
           && samples[from + count] == source.tone(frequency, static_cast<std::int64_t>(count))) {
        ++count;
    }
    return count;
}

inline constexpr std::size_t fadeFrames = 240;  // 5 ms

/// What comes `frame` frames behind the last one at full level.
inline float faded(const ToneSource& source, std::size_t fullFrames, std::size_t frame)
{
    const double angle = std::numbers::pi * static_cast<double>(frame + 1) / fadeFrames;
    const auto place = static_cast<std::int64_t>(fullFrames + frame);
    return static_cast<float>((0.5 + 0.5 * std::cos(angle)) * source.tone(997, place));
}

/// How many frames of a 997 Hz tone, from `begin` on, came before its fade; 0 when it has none.
inline std::size_t toneThenFade(const std::vector<float>& left, std::size_t begin,
                                const ToneSource& source)
{
    std::size_t end = begin + toneIn(left, begin, source, 997);
    while (end < left.size() && left[end] != 0.0F) {
        ++end;
    }
    if (end + 1 < begin + fadeFrames || end == left.size()) {
        return 0;
    }
    const std::size_t full = end + 1 - begin - fadeFrames;  // the fade's last frame is silent
    for (std::size_t frame = 0; frame < fadeFrames; ++frame) {
        // Two roundings to float apart, at most.
        if (std::abs(left[begin + full + frame] - faded(source, full, frame)) > 1e-7F) {
            return 0;
        }
    }
    return full;
}

}  // namespace tonvale::test
