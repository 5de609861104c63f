// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/FastMath.h"
#include "Platform/Audio/TimePitch/KaiserWindow.h"
#include "Platform/Audio/TimePitch/Numbers.h"

namespace tonvale::timepitch {
namespace {

TEST(FastMathTest, AngleIsWithinAMillionthOnTheWholeCircle)
{
    for (int step = -31000; step <= 31000; ++step) {
        const double angle = step * 1e-4;
        for (const double radius : {1e-12, 1.0, 1e9}) {
            const float result = fastAngle(static_cast<float>(radius * std::sin(angle)),
                                           static_cast<float>(radius * std::cos(angle)));
            EXPECT_NEAR(static_cast<double>(result), angle, 1e-6);
        }
    }
    EXPECT_EQ(fastAngle(0, 0), 0);
    EXPECT_NEAR(fastAngle(0, -1), static_cast<float>(pi), 1e-6F);
}

TEST(FastMathTest, SineAndCosineAreWithinAMillionth)
{
    for (int step = -100000; step <= 100000; ++step) {
        const auto angle = static_cast<float>(step * 1e-4);
        const SineCosine value = fastSineCosine(angle);
        EXPECT_NEAR(static_cast<double>(value.sine), std::sin(static_cast<double>(angle)), 1e-6);
        EXPECT_NEAR(static_cast<double>(value.cosine), std::cos(static_cast<double>(angle)), 1e-6);
    }
}

TEST(NumbersTest, DivisionsRoundDownAndUpForNegativeNumbersToo)
{
    EXPECT_EQ(floorDivide(7, 4), 1);
    EXPECT_EQ(floorDivide(-7, 4), -2);
    EXPECT_EQ(floorDivide(-8, 4), -2);
    EXPECT_EQ(ceilDivide(7, 4), 2);
    EXPECT_EQ(ceilDivide(-7, 4), -1);
    EXPECT_EQ(ceilDivide(-8, 4), -2);
}

TEST(NumbersTest, WrappedPhasesDifferByWholeTurns)
{
    for (double phase = -100; phase < 100; phase += 0.37) {
        const double wrapped = wrapPhase(phase);
        EXPECT_LE(std::abs(wrapped), pi + 1e-12);
        const double turns = (phase - wrapped) / twoPi;
        EXPECT_NEAR(turns, std::round(turns), 1e-9);
    }
}

TEST(KaiserWindowTest, IsOneInTheMiddleAndZeroOutside)
{
    EXPECT_DOUBLE_EQ(kaiserWindow(0, 8), 1);
    EXPECT_DOUBLE_EQ(kaiserWindow(1, 8), 0);
    EXPECT_DOUBLE_EQ(kaiserWindow(-3, 8), 0);
    EXPECT_NEAR(kaiserWindow(0.999999, 8), 1 / besselI0(8), 1e-3);
    EXPECT_NEAR(besselI0(1), 1.2660658777520084, 1e-12);  // Abramowitz and Stegun, table 9.8
}

}  // namespace
}  // namespace tonvale::timepitch
