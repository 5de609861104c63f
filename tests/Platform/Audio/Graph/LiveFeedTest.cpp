// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/LiveFeed.h"

#include "Support/ProcessState.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <thread>

namespace tonvale::test {

namespace {

/// Waits for the call that a feed owes its worker.
class WaitingWorker {
public:
    explicit WaitingWorker(WakeUp& wakeUp)
        : wakeUp_(wakeUp)
        , thread_([this] {
            wakeUp_.wait();
            isCalled_ = true;
        })
    {
    }
    ~WaitingWorker()
    {
        wakeUp_.call();
        thread_.join();
    }
    WaitingWorker(const WaitingWorker&) = delete;
    WaitingWorker& operator=(const WaitingWorker&) = delete;

    [[nodiscard]] bool isCalled() const
    {
        return eventually([this] { return isCalled_.load(); });
    }

private:
    WakeUp& wakeUp_;
    std::atomic<bool> isCalled_ = false;
    std::thread thread_;
};

class LiveFeedTest : public testing::Test {
protected:
    void SetUp() override { feed.prepare({.sampleRate = 48000, .channelCount = 2}); }

    WakeUp wakeUp;
    LiveFeed feed{wakeUp};
    std::array<float, 6> written{1, 2, 3, 4, 5, 6};
    std::array<float, 6> heard{};
};

TEST_F(LiveFeedTest, GivesNothingWhileItsGateIsClosed)
{
    ASSERT_EQ(feed.write(written), written.size());
    EXPECT_EQ(feed.read(heard), 0U);
    feed.open();
    EXPECT_EQ(feed.read(heard), 3U);
    EXPECT_EQ(heard, written);
    ASSERT_EQ(feed.write(written), written.size());
    feed.close();
    EXPECT_EQ(feed.read(heard), 0U);
}

TEST_F(LiveFeedTest, TellsOnceThatTheDeviceFoundTooLittle)
{
    ASSERT_EQ(feed.write(written), written.size());
    feed.open();
    EXPECT_EQ(feed.read(heard), 3U);
    EXPECT_FALSE(feed.takeHunger()) << "it found all it wanted";
    EXPECT_EQ(feed.read(heard), 0U);
    EXPECT_TRUE(feed.takeHunger());
    EXPECT_FALSE(feed.takeHunger());
}

TEST_F(LiveFeedTest, CallsItsWorkerWhenThereIsRoomAgainEvenAtTheEnd)
{
    ASSERT_EQ(feed.write(written), written.size());
    feed.open();
    feed.complete();
    EXPECT_EQ(feed.read(heard), 3U);
    EXPECT_TRUE(WaitingWorker(wakeUp).isCalled());
}

TEST_F(LiveFeedTest, BeginsAnewWhenItIsOpenedAgain)
{
    feed.open();
    feed.complete();
    EXPECT_EQ(feed.read(heard), 0U);
    feed.close();
    feed.open();
    EXPECT_FALSE(feed.takeHunger()) << "that was before";
    EXPECT_EQ(feed.read(heard), 0U);
    EXPECT_TRUE(WaitingWorker(wakeUp).isCalled()) << "there is an end no more";
}

TEST_F(LiveFeedTest, IsEmptyAndClosedAgainForAnotherDevice)
{
    EXPECT_EQ(feed.write(written), written.size());
    feed.open();
    feed.prepare({.sampleRate = 1000, .channelCount = 2});
    EXPECT_TRUE(feed.isEmpty());
    EXPECT_FALSE(feed.isFull());
    const std::array<float, 30> more{};
    EXPECT_EQ(feed.write(more), 24U) << "12 ms of both channels";
    EXPECT_TRUE(feed.isFull());
    EXPECT_EQ(feed.read(heard), 0U);
}

TEST_F(LiveFeedTest, CallsItsWorkerWhenItIsEmptyBeforeTheEnd)
{
    feed.open();
    EXPECT_EQ(feed.read(heard), 0U);
    EXPECT_TRUE(WaitingWorker(wakeUp).isCalled());
}

}  // namespace

}  // namespace tonvale::test
