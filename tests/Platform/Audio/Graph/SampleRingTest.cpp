// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/SampleRing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <random>
#include <thread>
#include <vector>

namespace tonvale {
namespace {

using Samples = std::vector<float>;

Samples readUpTo(SampleRing& ring, std::size_t count)
{
    Samples samples(count);
    samples.resize(ring.read(samples));
    return samples;
}

TEST(SampleRing, GivesBackWhatWasWrittenInOrder)
{
    SampleRing ring(4);
    ring.write(Samples{1, 2, 3});
    EXPECT_EQ(readUpTo(ring, 2), (Samples{1, 2}));
    ring.write(Samples{4, 5, 6});  // around its end
    EXPECT_EQ(readUpTo(ring, 9), (Samples{3, 4, 5, 6}));
    EXPECT_EQ(readUpTo(ring, 9), Samples());
}

TEST(SampleRing, KnowsHowMuchFits)
{
    SampleRing ring(4);
    EXPECT_TRUE(ring.isEmpty());
    EXPECT_EQ(ring.room(), 4U);
    ring.write(Samples{1, 2, 3});
    EXPECT_FALSE(ring.isEmpty());
    EXPECT_EQ(ring.room(), 1U);
    ring.write(Samples{4});
    EXPECT_EQ(ring.room(), 0U);
    (void)readUpTo(ring, 4);
    EXPECT_TRUE(ring.isEmpty());
}

TEST(SampleRing, ForgetsWhatWasWritten)
{
    SampleRing ring(4);
    ring.write(Samples{1, 2, 3});
    (void)readUpTo(ring, 1);
    ring.clear();
    EXPECT_TRUE(ring.isEmpty());
    EXPECT_EQ(ring.room(), 4U);
    ring.write(Samples{7});
    EXPECT_EQ(readUpTo(ring, 4), Samples{7});
}

TEST(SampleRing, CarriesEverySampleFromOneThreadToAnother)
{
    constexpr std::size_t total = 200000;
    SampleRing ring(37);
    std::thread writer([&ring] {
        std::minstd_rand random(1);
        for (std::size_t written = 0; written < total;) {
            Samples samples(std::min({std::size_t{random() % 20}, ring.room(), total - written}));
            std::ranges::generate(samples, [&] { return static_cast<float>(written++); });
            ring.write(samples);
        }
    });
    std::minstd_rand random(2);
    std::size_t count = 0;
    bool isInOrder = true;
    while (count < total) {
        for (const float sample : readUpTo(ring, random() % 20)) {
            isInOrder = isInOrder && sample == static_cast<float>(count);
            ++count;
        }
    }
    writer.join();
    EXPECT_TRUE(isInOrder);
    EXPECT_TRUE(ring.isEmpty());
}

TEST(SampleRingDeathTest, AbortsWhenMoreIsWrittenThanFits)
{
    SampleRing ring(4);
    EXPECT_EXIT(ring.write(Samples(5)), ::testing::KilledBySignal(SIGABRT), "");
}

}  // namespace
}  // namespace tonvale
