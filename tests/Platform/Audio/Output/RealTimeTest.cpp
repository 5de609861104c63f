// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/RealTimeMarks.h"
#include "Platform/Audio/Output/SoundTest.h"
#include "Support/ProcessState.h"
#include "Support/RealTimeWatch.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace tonvale::test {

namespace {

/// Something that code on the device's thread must not do.
struct Misdeed {
    std::string name;
    std::function<void()> doIt;
};

/// Kept out of sight of the optimizer, which would do without.
void* volatile memory;
volatile long outcome = 0;

void* takeMemory()
{
    void* const taken = memory;
    memory = nullptr;
    return taken;
}

const std::vector<Misdeed>& misdeeds()
{
    static std::mutex mutex;
    static const std::vector<Misdeed> all{
        {"malloc", [] { memory = std::malloc(100); }},
        {"free", [] { std::free(takeMemory()); }},
        {"malloc", [] { memory = ::operator new(100); }},
        {"free", [] { ::operator delete(takeMemory()); }},
        {"calloc", [] { memory = std::calloc(3, 100); }},
        {"realloc", [] { memory = std::realloc(takeMemory(), 1000); }},
        {"pthread_mutex_lock", [] { const std::lock_guard lock(mutex); }},
        {"write", [] { outcome = ::write(-1, "", 0); }},
        {"read", [] { outcome = ::read(-1, nullptr, 0); }},
        {"open", [] { outcome = ::open("", O_RDONLY); }},
        {"poll", [] { static_cast<void>(::poll(nullptr, 0, 0)); }},
    };
    return all;
}

TEST(RealTimeWatchTest, EveryMisdeedInACallbackCounts)
{
    for (const Misdeed& misdeed : misdeeds()) {
        RealTimeWatch::reset();
        {
            const DeviceCallback mark;
            misdeed.doIt();
        }
        EXPECT_EQ(RealTimeWatch::forbiddenCalls(), 1U) << misdeed.name;
        EXPECT_EQ(RealTimeWatch::lastForbiddenCall(), misdeed.name);
    }
}

TEST(RealTimeWatchTest, OutsideOfACallbackAndInsideOfTheLibraryNothingCounts)
{
    RealTimeWatch::reset();
    for (const Misdeed& misdeed : misdeeds()) {
        misdeed.doIt();
        const DeviceCallback callback;
        const LibraryCall call;
        misdeed.doIt();
    }
    EXPECT_EQ(RealTimeWatch::forbiddenCalls(), 0U) << RealTimeWatch::lastForbiddenCall();
}

TEST(RealTimeWatchTest, WhatComesRightBeforeOrAfterALibraryCallCounts)
{
    for (const Misdeed& misdeed : misdeeds()) {
        RealTimeWatch::reset();
        const DeviceCallback callback;
        misdeed.doIt();
        {
            const LibraryCall call;
            misdeed.doIt();
        }
        misdeed.doIt();
        EXPECT_EQ(RealTimeWatch::forbiddenCalls(), 2U) << misdeed.name;
    }
}

/// Allocates whenever it is asked for frames, which is right before they are written.
class ClumsySource final : public ToneSource {
public:
    [[nodiscard]] std::uint32_t read(std::span<float> samples) noexcept override
    {
        ++reads;
        memory = std::malloc(100);
        return ToneSource::read(samples);
    }

    std::atomic<std::uint64_t> reads = 0;
};

using RealTimeOutputTest = SoundTest;

TEST_F(RealTimeOutputTest, AllocationsOfTheSourceCount)
{
    ClumsySource clumsy;
    clumsy.setTone(997);
    clumsy.offer(48000);
    output->start(clumsy);
    RealTimeWatch::reset();
    const std::uint64_t before = clumsy.reads;
    output->framesReady();
    ASSERT_TRUE(eventually([&clumsy] { return clumsy.given() == 48000; }));
    output.reset();
    EXPECT_GE(RealTimeWatch::forbiddenCalls(), clumsy.reads - before);
}

TEST_F(RealTimeOutputTest, NothingOfOursAllocatesLocksOrWaitsInTheDevicesThread)
{
    Recorder recorder;
    output->start(source);
    RealTimeWatch::reset();
    play(997);
    ASSERT_TRUE(recorder.waitForSeconds(0.5));
    for (int seek = 0; seek < 50; ++seek) {
        stop();
        play(500 + 10 * seek);
        ASSERT_TRUE(recorder.waitForSeconds(0.01));
    }
    source.giveAtMost(240);
    ASSERT_TRUE(recorder.waitForSeconds(0.5));  // with the timer
    source.offer(0);
    ASSERT_TRUE(recorder.waitForSilence());
    ASSERT_TRUE(eventually([] {  // paused
        return PulseServer::control({"list", "sink-inputs"}).find("Corked: yes")
               != std::string::npos;
    }));
    play(997);
    ASSERT_TRUE(eventually([this] { return source.given() > 9600; }));
    server.kill();
    ASSERT_TRUE(eventually([this] { return !output->isRunning(); }));
    EXPECT_EQ(RealTimeWatch::forbiddenCalls(), 0U) << RealTimeWatch::lastForbiddenCall();
    EXPECT_GT(RealTimeWatch::deviceCallbacks(), 100U);
    EXPECT_GT(RealTimeWatch::libraryCalls(), 100U);
}

}  // namespace

}  // namespace tonvale::test
