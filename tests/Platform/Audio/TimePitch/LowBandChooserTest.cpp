// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/LowBandChooser.h"

namespace tonvale::timepitch {
namespace {

/// Frames of the second layer with triangular peaks (in dB) whose advance changes at will.
class LowBandChooserTest : public testing::Test {
protected:
    LowBandChooserTest()
        : lowest_(makeGeometry(44100).layers[0])
        , second_(makeGeometry(44100).layers[1])
        , frames_(1, second_.binCount)
        , chooser_(lowest_, second_)
    {
    }

    void setPeaks(std::initializer_list<int> bins, float change, float level = 1)
    {
        for (std::int64_t number = 0; number < 4; ++number) {
            SpectrumFrame& frame = frames_.at(number);
            frame.clear();
            for (const int bin : bins) {
                frame.peaks.push_back({.bin = bin,
                                       .regionEnd = bin + 2,
                                       .previousBin = bin,
                                       .valley = 0,
                                       .advanceBefore = 10,
                                       .advanceAfter = 10 + change});
                for (int k = bin - 3; k <= bin + 3; ++k) {
                    const auto slope = static_cast<float>(std::pow(10.0, -2.0 * std::abs(k - bin)));
                    frame.power[k] = std::max(frame.power[k], level * slope);
                    frame.spreadPower[k] = frame.power[k];
                }
            }
            frame.peaks.back().regionEnd = second_.binCount;
        }
    }

    LayerDesign lowest_;
    LayerDesign second_;
    FrameHistory frames_;
    LowBandChooser chooser_;
};

TEST_F(LowBandChooserTest, MovingPeakThatStandsAloneIsTaken)
{
    setPeaks({40}, 1);
    chooser_.update(frames_, 1, true);
    EXPECT_EQ(chooser_.servedShare()[40], 1);
    EXPECT_NEAR(chooser_.secondWeights()[40], 1, 1e-3) << "it carries the lowest band there";
    const int low = lowest_.nearestBin(second_, 40);
    EXPECT_NEAR(chooser_.lowestWeights()[low], 0, 1e-3) << "so that layer does not";
}

TEST_F(LowBandChooserTest, SteadyPeakStaysWhereResolutionIsBest)
{
    setPeaks({40}, 0.001F);
    chooser_.update(frames_, 1, true);
    EXPECT_EQ(chooser_.servedShare()[40], 0);
}

TEST_F(LowBandChooserTest, CloseNeighboursStayToo)
{
    setPeaks({40, 43}, 1);
    chooser_.update(frames_, 1, true);
    EXPECT_EQ(chooser_.servedShare()[40], 0);
    setPeaks({40, 50}, 1);
    chooser_.update(frames_, 1, true);
    EXPECT_EQ(chooser_.servedShare()[40], 1);
    EXPECT_EQ(chooser_.servedShare()[50], 1);
}

TEST_F(LowBandChooserTest, BeatingPeakIsNotTaken)
{
    setPeaks({40}, 1);
    frames_.at(2).spreadPower[40] *= 1.5F;  // 1.8 dB within a hop
    chooser_.update(frames_, 1, true);
    EXPECT_EQ(chooser_.servedShare()[40], 0);
}

TEST_F(LowBandChooserTest, NothingIsTakenNearAnOnsetOrAboveTheBand)
{
    setPeaks({40, 180}, 1);
    chooser_.update(frames_, 1, false);
    EXPECT_EQ(chooser_.servedShare()[40], 0);
    chooser_.update(frames_, 1, true);
    EXPECT_EQ(chooser_.servedShare()[40], 1);
    EXPECT_EQ(chooser_.servedShare()[180], 0) << "1938 Hz is the second layer's own";
}

TEST_F(LowBandChooserTest, MovementIsHeldOverTurningPoints)
{
    setPeaks({40}, 1);
    chooser_.update(frames_, 1, true);
    setPeaks({40}, 0);
    chooser_.update(frames_, 1, true);
    EXPECT_EQ(chooser_.servedShare()[40], 1);
    for (int m = 0; m < 40; ++m) {
        chooser_.update(frames_, 1, true);
    }
    EXPECT_EQ(chooser_.servedShare()[40], 0);
}

}  // namespace
}  // namespace tonvale::timepitch
