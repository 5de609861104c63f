// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/JobQueue.h"

#include "Support/ProcessState.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <latch>
#include <vector>

namespace tonvale {
namespace {

using std::chrono::milliseconds;
using ::testing::ElementsAre;

constexpr auto longEnough = std::chrono::minutes(10);  // a broken queue fails by its time limit

TEST(JobQueue, RunsJobsBesideEachOther)
{
    std::latch bothRun(2);
    JobQueue queue(2);
    for (int count = 0; count < 2; ++count) {
        queue.add(0, [&] { bothRun.arrive_and_wait(); });  // alone it would wait for ever
    }
    EXPECT_TRUE(queue.waitUntilDone(longEnough));
}

TEST(JobQueue, RunsNoMoreJobsBesideEachOtherThanItHasThreads)
{
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    JobQueue queue(3);
    for (int count = 0; count < 300; ++count) {
        queue.add(0, [&] {
            const int now = ++running;
            for (int seen = most; seen < now && !most.compare_exchange_weak(seen, now);) {
            }
            --running;
        });
    }
    EXPECT_TRUE(queue.waitUntilDone(longEnough));
    EXPECT_LE(most, 3);
}

TEST(JobQueue, RunsLowerRanksFirstAndOneRankInItsOrder)
{
    std::vector<int> order;
    std::latch isFilled(1);
    JobQueue queue(1);
    queue.add(0, [&] { isFilled.wait(); });
    queue.add(2, [&] { order.push_back(3); });
    queue.add(1, [&] { order.push_back(1); });
    queue.add(1, [&] { order.push_back(2); });
    isFilled.count_down();
    EXPECT_TRUE(queue.waitUntilDone(longEnough));
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
}

TEST(JobQueue, IsNotDoneBeforeTheJobsThatItsJobsLeadTo)
{
    std::atomic<int> done = 0;
    JobQueue queue(2);
    queue.add(0, [&] {
        for (int count = 0; count < 12; ++count) {
            queue.add(0, [&] { ++done; });
        }
    });
    EXPECT_TRUE(queue.waitUntilDone(longEnough));
    EXPECT_EQ(done, 12);
}

TEST(JobQueue, SaysWhenTheTimeWasUp)
{
    std::latch mayEnd(1);
    JobQueue queue(1);
    EXPECT_TRUE(queue.waitUntilDone(milliseconds(0)));
    queue.add(0, [&] { mayEnd.wait(); });
    EXPECT_FALSE(queue.waitUntilDone(milliseconds(0)));
    mayEnd.count_down();
    EXPECT_TRUE(queue.waitUntilDone(longEnough));
}

TEST(JobQueue, DropsWhatHasNotBegunWhenItEnds)
{
    std::latch hasBegun(1);
    std::atomic<bool> isEnding = false;
    std::vector<int> done;
    {
        JobQueue queue(1);
        queue.add(0, [&, owner = ::gettid()] {
            hasBegun.count_down();
            EXPECT_TRUE(test::eventually([&] {
                return isEnding && test::isInSystemCall(owner, SYS_futex);
            })) << "nobody waits for this job";
            done.push_back(1);
        });
        queue.add(1, [&] { done.push_back(2); });
        hasBegun.wait();
        isEnding = true;
    }
    EXPECT_THAT(done, ElementsAre(1));
}

}  // namespace
}  // namespace tonvale
