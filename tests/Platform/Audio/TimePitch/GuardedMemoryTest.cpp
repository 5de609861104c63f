// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "GuardedMemory.h"
#include "Platform/Audio/TimePitch/Array.h"

namespace tonvale::timepitch::test {
namespace {

TEST(GuardedMemoryTest, AllocationsAreCounted)
{
    const AllocationCounter allocations;
    const auto text = std::make_unique<std::string>(100, 'x');
    EXPECT_EQ(allocations.count(), 2);
}

#if !defined(__SANITIZE_ADDRESS__)

/// An element that the compiler cannot know to be out of bounds.
volatile float& elementOf(Array<float>& values, std::ptrdiff_t index)
{
    const volatile std::ptrdiff_t hidden = index;
    return values.data()[hidden];
}

void writeAt(std::ptrdiff_t index)
{
    Array<float> values(5);
    elementOf(values, index) = 1;
}

TEST(GuardedMemoryDeathTest, WritingBesideAnArrayEndsTheProgram)
{
    EXPECT_DEATH(writeAt(-1), "beyond the memory");
    EXPECT_DEATH(writeAt(5), "beyond the memory");
    writeAt(0);
    writeAt(4);
}

TEST(GuardedMemoryTest, WhatLiesBesideAnArrayIsNoNumber)
{
    Array<float> values(5);
    EXPECT_TRUE(std::isnan(elementOf(values, -1)));
    EXPECT_TRUE(std::isnan(elementOf(values, 5)));
    EXPECT_EQ(elementOf(values, 4), 0);
}

#endif

}  // namespace
}  // namespace tonvale::timepitch::test
