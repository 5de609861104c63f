// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/UnfinishedOutputs.h"

#include <gtest/gtest.h>

#include <future>
#include <optional>
#include <thread>

namespace tonvale {
namespace {

TEST(UnfinishedOutputs, EndAtOnceWhereThereAreNone)
{
    UnfinishedOutputs outputs;
    {
        const UnfinishedOutputs::Entry finished(outputs);
    }
    outputs.interrupt();
    EXPECT_THROW(UnfinishedOutputs::Entry late(outputs), UnfinishedOutputs::Interrupted);
}

TEST(UnfinishedOutputs, AreToldOfAnInterruptionThatWaitsForTheLast)
{
    UnfinishedOutputs outputs;
    std::optional<UnfinishedOutputs::Entry> first(std::in_place, outputs);
    std::optional<UnfinishedOutputs::Entry> second(std::in_place, outputs);
    EXPECT_NO_THROW(first->check());
    auto interruption = std::async(std::launch::async, [&] { outputs.interrupt(); });
    const auto isTold = [](const UnfinishedOutputs::Entry& entry) {
        try {
            entry.check();
        } catch (const UnfinishedOutputs::Interrupted&) {
            return true;
        }
        return false;
    };
    while (!isTold(*first)) {
        std::this_thread::yield();
    }
    EXPECT_THROW(second->check(), UnfinishedOutputs::Interrupted);
    first.reset();
    EXPECT_EQ(interruption.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
    second.reset();
    interruption.get();
}

}  // namespace
}  // namespace tonvale
