// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFile.h"
#include "Platform/Audio/Graph/AudioEngine.h"
#include "Platform/Audio/Graph/AudioPlayerNode.h"
#include "Platform/Audio/Graph/AudioUnitTimePitch.h"
#include "Support/FakeAudioDevice.h"
#include "Support/Songs.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tonvale::test {

using Samples = std::vector<float>;

/// One side of interleaved stereo.
inline Samples side(const Samples& interleaved, std::size_t which)
{
    Samples samples;
    for (std::size_t place = which; place < interleaved.size(); place += 2) {
        samples.push_back(interleaved[place]);
    }
    return samples;
}

inline bool areAll(const Samples& samples, float level)
{
    return !samples.empty()
           && std::ranges::all_of(samples, [level](float sample) { return sample == level; });
}

/// As whoever previews a song does it.
inline void connectAll(AudioEngine& engine, AudioPlayerNode& player, AudioUnitTimePitch& pitch)
{
    engine.attach(player);
    engine.attach(pitch);
    engine.connect(player, pitch, std::nullopt);
    engine.connect(pitch, engine.mainMixerNode(), std::nullopt);
}

/// Player, time-pitch unit and mixer on a device that takes frames when the test says so.
class LiveGraph : public ::testing::Test {
protected:
    LiveGraph() { connectAll(engine, player, pitch); }

    std::shared_ptr<AudioFile> write(const std::string& name, double sampleRate,
                                     const Channels& channels)
    {
        writeSong(folder.path() / name, sampleRate, channels);
        return open(name);
    }

    std::shared_ptr<AudioFile> open(const std::string& name)
    {
        return std::make_shared<AudioFile>(AudioFile::forReading(folder.path() / name));
    }

    /// A song in stereo that stays at one level, which tells it from others.
    std::shared_ptr<AudioFile> steady(float level, std::size_t frames = 96000)
    {
        return write("steady" + std::to_string(level) + ".wav", 48000,
                     Channels(2, Samples(frames, level)));
    }

    void schedule(const std::shared_ptr<AudioFile>& file, std::int64_t start = 0)
    {
        player.scheduleSegment(file, start, static_cast<std::uint32_t>(file->length() - start));
    }

    /// As whoever previews a song does it.
    void play(const std::shared_ptr<AudioFile>& file, std::int64_t start = 0)
    {
        if (!engine.isRunning()) {
            engine.start();
        }
        player.stop();
        schedule(file, start);
        player.play();
    }

    FakeAudioDevice device;
    TemporaryFolder folder;
    AudioEngine engine;
    AudioPlayerNode player;
    AudioUnitTimePitch pitch;
};

}  // namespace tonvale::test
