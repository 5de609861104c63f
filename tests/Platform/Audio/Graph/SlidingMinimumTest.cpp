// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/SlidingMinimum.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace tonvale {
namespace {

constexpr std::uint32_t windowLength = 5;

float leastOfLast(const std::vector<float>& values)
{
    const auto count = std::min<std::ptrdiff_t>(windowLength, std::ssize(values));
    return *std::min_element(values.end() - count, values.end());
}

TEST(SlidingMinimum, IsTheLeastOfItsWindow)
{
    const unsigned seed = 5;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> gain(0.0F, 1.0F);
    SlidingMinimum minimum(windowLength);
    std::vector<float> values;
    for (int count = 0; count < 1000; ++count) {
        values.push_back(count % 7 == 0 ? 1.0F : gain(random));
        ASSERT_EQ(minimum.push(values.back()), leastOfLast(values)) << count;
    }
}

TEST(SlidingMinimum, PassesOnesAsIfTheyHadBeenPushed)
{
    SlidingMinimum minimum(windowLength);
    EXPECT_EQ(minimum.push(0.5F), 0.5F);
    minimum.pass(3);
    EXPECT_EQ(minimum.push(0.9F), 0.5F);
    EXPECT_EQ(minimum.push(1.0F), 0.9F);
    minimum.pass(100);
    EXPECT_EQ(minimum.push(1.0F), 1.0F);
}

TEST(SlidingMinimum, RestsWhenTheNextWindowHoldsNothingBelowOne)
{
    SlidingMinimum minimum(windowLength);
    EXPECT_TRUE(minimum.isAtRest());
    (void)minimum.push(0.5F);
    for (std::uint32_t count = 1; count < windowLength; ++count) {
        EXPECT_FALSE(minimum.isAtRest()) << count;
        (void)minimum.push(1.0F);
    }
    EXPECT_TRUE(minimum.isAtRest());
    (void)minimum.push(0.5F);
    minimum.pass(windowLength - 2);
    EXPECT_FALSE(minimum.isAtRest());
    minimum.pass(1);
    EXPECT_TRUE(minimum.isAtRest());
}

}  // namespace
}  // namespace tonvale
