// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/DetachedTask.h"

#include "Platform/Foundation/PlatformError.h"
#include "Support/MainLoop.h"
#include "Support/ProcessState.h"

#include <gtest/gtest.h>

#include <QObject>

#include <atomic>
#include <latch>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace tonvale {
namespace {

using test::spinUntil;

/// One that is told outcomes.
struct Receiver : QObject {
    std::vector<std::string> outcomes;
    std::vector<std::thread::id> threads;

    void take(const TaskOutcome<std::string>& outcome)
    {
        threads.push_back(std::this_thread::get_id());
        try {
            outcomes.push_back(outcome.get());
        } catch (...) {
            outcomes.push_back(localizedDescription(std::current_exception()));
        }
    }
};

template <class Work>
void start(Receiver& receiver, Work work)
{
    DetachedTask::run(
        TaskPriority::userInitiated, receiver, std::move(work),
        [](Receiver& to, const TaskOutcome<std::string>& outcome) { to.take(outcome); });
}

TEST(DetachedTask, WorksElsewhereAndTellsTheMainThread)
{
    Receiver receiver;
    std::thread::id worker;
    start(receiver, [&worker] {
        worker = std::this_thread::get_id();
        return std::string("done");
    });
    EXPECT_TRUE(receiver.outcomes.empty());
    ASSERT_TRUE(spinUntil([&] { return !receiver.outcomes.empty(); }));
    EXPECT_EQ(receiver.outcomes, std::vector<std::string>{"done"});
    EXPECT_EQ(receiver.threads.front(), std::this_thread::get_id());
    EXPECT_NE(worker, std::this_thread::get_id());
}

TEST(DetachedTask, TellsOfWhatWasThrown)
{
    Receiver receiver;
    start(receiver, []() -> std::string { throw PlatformError("It broke."); });
    ASSERT_TRUE(spinUntil([&] { return !receiver.outcomes.empty(); }));
    EXPECT_EQ(receiver.outcomes.front(), "It broke.");
}

TEST(DetachedTask, CanHaveNoResult)
{
    QObject receiver;
    std::string outcome;
    const auto run = [&](auto work) {
        outcome.clear();
        DetachedTask::run(TaskPriority::unspecified, receiver, work,
                          [&](QObject&, const TaskOutcome<void>& result) {
                              try {
                                  result.get();
                                  outcome = "done";
                              } catch (const LocalizedError& error) {
                                  outcome = error.errorDescription();
                              }
                          });
        return spinUntil([&] { return !outcome.empty(); });
    };
    ASSERT_TRUE(run([] {}));
    EXPECT_EQ(outcome, "done");
    ASSERT_TRUE(run([] { throw PlatformError("It broke."); }));
    EXPECT_EQ(outcome, "It broke.");
}

TEST(DetachedTask, RunsBesideAnyNumberOfOthers)
{
    constexpr int count = 40;  // more than any pool would run at once
    Receiver receiver;
    std::latch all(count);
    for (int task = 0; task < count; ++task) {
        start(receiver, [&all] {
            all.arrive_and_wait();
            return std::string("met");
        });
    }
    ASSERT_TRUE(spinUntil([&] { return receiver.outcomes.size() == count; }));
}

TEST(DetachedTask, ForgetsAReceiverThatIsGone)
{
    std::latch mayEnd(1);
    auto receiver = std::make_unique<Receiver>();
    auto held = std::make_shared<int>(0);
    start(*receiver, [&mayEnd, held] {
        mayEnd.wait();
        return std::string("late");
    });
    receiver.reset();
    mayEnd.count_down();
    EXPECT_TRUE(spinUntil([&] { return held.use_count() == 1; })) << "the task is still there";
    test::runQueuedCalls();
}

TEST(DetachedTask, TellsNobodyOfAReceiverThatGoesBetweenTheEndAndTheTelling)
{
    auto receiver = std::make_unique<QObject>();
    const auto held = std::make_shared<int>(0);  // until the task has ended and its outcome waits
    const auto isTold = std::make_shared<bool>(false);
    DetachedTask::run(
        TaskPriority::unspecified, *receiver, [held] {},
        [isTold](QObject&, const TaskOutcome<void>&) { *isTold = true; });
    ASSERT_TRUE(test::eventually([&] { return held.use_count() == 1; }));
    receiver.reset();
    ASSERT_TRUE(spinUntil([&] { return isTold.use_count() == 1; })) << "nobody was asked for";
    EXPECT_FALSE(*isTold);
}

TEST(MainThreadCall, IsMadeOnceAndLater)
{
    int calls = 0;
    MainThreadCall call([&calls] { ++calls; });
    MainThreadCall copy = call;
    std::move(call).post();
    EXPECT_EQ(calls, 0);
    std::move(copy).post();
    test::runQueuedCalls();
    EXPECT_EQ(calls, 1);
}

TEST(MainThreadCall, IsNotMadeWhereNobodyAsks)
{
    bool wasCalled = false;
    const auto held = std::make_shared<int>(0);
    std::thread([call = MainThreadCall([&wasCalled, held] { wasCalled = true; })] {}).join();
    ASSERT_TRUE(spinUntil([&] { return held.use_count() == 1; }));
    EXPECT_FALSE(wasCalled);
}

}  // namespace
}  // namespace tonvale
