// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "LiveGraph.h"
#include "Platform/Foundation/PlatformError.h"
#include "Support/ProcessState.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace tonvale {
namespace {

using test::areAll;
using test::Channels;
using test::eventually;
using test::Samples;
using test::side;

class AudioEngineDevice : public test::LiveGraph {
protected:
    void playOn(AudioEngine& other, AudioPlayerNode& itsPlayer,
                const std::shared_ptr<AudioFile>& song)
    {
        other.start();
        itsPlayer.scheduleSegment(song, 0, 96000);
        itsPlayer.play();
        EXPECT_EQ(device.pullAll(100).size(), 200U);
    }
};

TEST_F(AudioEngineDevice, OpensTheDeviceWithItsTitleAndIsSilent)
{
    engine.setTitle("Song");
    EXPECT_FALSE(engine.isRunning());
    engine.start();
    EXPECT_TRUE(engine.isRunning());
    EXPECT_EQ(device.startCount, 1);
    EXPECT_EQ(device.title, "Song");
    EXPECT_TRUE(device.pull(100).empty());
    engine.setTitle("Another song");
    EXPECT_EQ(device.title, "Another song");
}

TEST_F(AudioEngineDevice, TakesBackWhatIsQueuedAlsoWhenASongThatEndedPlaysAgain)
{
    const auto song = steady(0.5F, 5000);
    play(song);
    ASSERT_EQ(device.pullAll(5000).size(), 10000U);
    ASSERT_TRUE(device.pull(10).empty());
    const int discards = device.discardCount;
    play(song);
    EXPECT_EQ(device.discardCount, discards + 1);
    EXPECT_TRUE(areAll(device.pullAll(5000), 0.5F));
}

TEST_F(AudioEngineDevice, ThrowsTheDevicesErrorAndWorksOnceItCanBeOpened)
{
    device.refusesToStart = true;
    try {
        engine.start();
        FAIL() << "started";
    } catch (const PlatformError& error) {
        EXPECT_EQ(error.errorDescription(), "Connection refused");
    }
    EXPECT_FALSE(engine.isRunning());
    player.stop();
    player.scheduleSegment(steady(0.25F), 0, 1000);
    player.play();
    device.refusesToStart = false;
    play(steady(0.5F));
    EXPECT_TRUE(areAll(device.pullAll(1000), 0.5F));
}

TEST_F(AudioEngineDevice, OpensALostDeviceAnewAndPlaysWhatIsPlayedNext)
{
    play(steady(0.5F));
    (void)device.pullAll(1000);
    device.isRunning = false;
    EXPECT_FALSE(engine.isRunning());
    engine.start();
    EXPECT_TRUE(engine.isRunning());
    EXPECT_EQ(device.startCount, 2);
    EXPECT_TRUE(device.pull(1000).empty());
    play(steady(0.25F));
    EXPECT_TRUE(areAll(device.pullAll(1000), 0.25F));
}

TEST_F(AudioEngineDevice, FollowsADeviceThatComesBackAtAnotherRate)
{
    const auto song = write("tone.wav", 48000, test::tones({440, 440}, 48000, 96000));
    play(song);
    (void)device.pullAll(1000);
    device.isRunning = false;
    device.format.sampleRate = 44100;
    play(song);
    const Samples samples = device.pullAll(44100);
    EXPECT_NEAR(test::centsBetween(440, test::frequencyOf(side(samples, 0), 44100)), 0, 0.1);
}

TEST_F(AudioEngineDevice, EndsWhileItPlays)
{
    const auto song = steady(0.5F);
    {
        AudioPlayerNode otherPlayer;
        AudioUnitTimePitch otherPitch;
        AudioEngine otherEngine;  // the nodes outlive it
        test::connectAll(otherEngine, otherPlayer, otherPitch);
        playOn(otherEngine, otherPlayer, song);
    }
    EXPECT_EQ(device.source, nullptr);
    EXPECT_EQ(song.use_count(), 1);
}

TEST_F(AudioEngineDevice, StopsWhenANodeGoesWhileItPlays)
{
    const auto song = steady(0.5F);
    AudioEngine otherEngine;
    {
        AudioPlayerNode otherPlayer;  // goes first
        AudioUnitTimePitch otherPitch;
        test::connectAll(otherEngine, otherPlayer, otherPitch);
        playOn(otherEngine, otherPlayer, song);
    }
    EXPECT_FALSE(otherEngine.isRunning());
    EXPECT_EQ(otherEngine.mainMixerNode().input(), nullptr);
}

TEST_F(AudioEngineDevice, StartsAThousandTimesWithoutGrowing)
{
    const auto song = write("song.wav", 48000, Channels(2, Samples(96000, 0.5F)));
    play(song);
    (void)device.pullAll(100);
    const std::size_t threads = test::threadCount();
    const std::size_t descriptors = test::openDescriptors().size();
    for (int round = 0; round < 1000; ++round) {
        if (round % 50 == 1) {
            engine.stop();
        }
        play(round % 5 == 0 ? open("song.wav") : song, round);
        if (round % 50 == 0) {
            EXPECT_EQ(device.pullAll(100).size(), 200U);
        }
    }
    play(song);
    EXPECT_TRUE(eventually([&] {
        return test::threadCount() == threads && test::openDescriptors().size() == descriptors;
    }));
}

TEST_F(AudioEngineDevice, KeepsEveryPromiseToADeviceThatReadsAllTheTime)
{
    const std::vector<std::shared_ptr<AudioFile>> songs{steady(0.5F), steady(-0.25F)};
    play(songs[0]);
    std::atomic<int> place = 0;  // odd while one song gives way to another
    std::atomic<bool> isOver = false;
    std::atomic<int> wrong = 0;
    std::atomic<int> right = 0;
    std::thread audio([&] {
        while (!isOver) {
            std::this_thread::yield();  // or nobody else would ever be let at the device
            const int before = place;
            const Samples samples = device.pull(240);
            if (before % 2 == 0 && before == place && !samples.empty()) {
                const float level = before / 2 % 2 == 0 ? 0.5F : -0.25F;
                ++(areAll(samples, level) ? right : wrong);
            }
        }
    });
    for (int round = 1; round <= 100; ++round) {
        const int enough = right + 2;
        while (right < enough && wrong == 0) {
            std::this_thread::yield();
        }
        ++place;
        play(songs[static_cast<std::size_t>(round) % 2]);
        ++place;
    }
    isOver = true;
    audio.join();
    EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace tonvale
