// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <initializer_list>

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

    struct Peak {
        int bin;
        double level = 1;
        double decadesPerBin = 2;  ///< by which the power falls on both sides
        int width = 3;             ///< bins on either side
    };

    void setPeaks(std::initializer_list<Peak> peaks, float change)
    {
        for (std::int64_t number = 0; number < 4; ++number) {
            SpectrumFrame& frame = frames_.at(number);
            frame.clear();
            for (const Peak& peak : peaks) {
                frame.peaks.push_back({.bin = peak.bin,
                                       .regionEnd = peak.bin + 2,
                                       .previousBin = peak.bin,
                                       .valley = 0,
                                       .advanceBefore = 10,
                                       .advanceAfter = 10 + change});
                for (int k = peak.bin - peak.width; k <= peak.bin + peak.width; ++k) {
                    const double power =
                        peak.level * std::pow(10.0, -peak.decadesPerBin * std::abs(k - peak.bin));
                    frame.power[k] = std::max(frame.power[k], static_cast<float>(power));
                    frame.spreadPower[k] = frame.power[k];
                }
            }
            frame.peaks.back().regionEnd = second_.binCount;
        }
    }
    /// Whether the second layer serves a bin after one frame of these peaks, which move.
    [[nodiscard]] bool isServed(int bin, std::initializer_list<Peak> peaks)
    {
        setPeaks(peaks, 1);
        chooser_.reset();
        chooser_.update(frames_, 1, true);
        return chooser_.servedShare()[bin] == 1;
    }

    LayerDesign lowest_;
    LayerDesign second_;
    FrameHistory frames_;
    LowBandChooser chooser_;
};

TEST_F(LowBandChooserTest, MovingPeakThatStandsAloneIsTaken)
{
    setPeaks({{40}}, 1);
    chooser_.update(frames_, 1, true);
    EXPECT_EQ(chooser_.servedShare()[40], 1);
    EXPECT_NEAR(chooser_.secondWeights()[40], 1, 1e-3) << "it carries the lowest band there";
    const int low = lowest_.nearestBin(second_, 40);
    EXPECT_NEAR(chooser_.lowestWeights()[low], 0, 1e-3) << "so that layer does not";
}

TEST_F(LowBandChooserTest, SteadyPeakStaysWhereResolutionIsBest)
{
    setPeaks({{40}}, 0.001F);
    chooser_.update(frames_, 1, true);
    EXPECT_EQ(chooser_.servedShare()[40], 0);
}

TEST_F(LowBandChooserTest, CloseNeighboursStayToo)
{
    setPeaks({{40}, {43}}, 1);
    chooser_.update(frames_, 1, true);
    EXPECT_EQ(chooser_.servedShare()[40], 0);
    setPeaks({{40}, {44}}, 1);
    chooser_.update(frames_, 1, true);
    EXPECT_EQ(chooser_.servedShare()[40], 1);
    EXPECT_EQ(chooser_.servedShare()[44], 1);
}

TEST_F(LowBandChooserTest, BeatingPeakIsNotTaken)
{
    setPeaks({{40}}, 1);
    frames_.at(2).spreadPower[40] *= 1.5F;  // 1.8 dB within a hop
    chooser_.update(frames_, 1, true);
    EXPECT_EQ(chooser_.servedShare()[40], 0);
}

TEST_F(LowBandChooserTest, NothingIsTakenNearAnOnsetOrAboveTheBand)
{
    setPeaks({{40}, {180}}, 1);
    chooser_.update(frames_, 1, false);
    EXPECT_EQ(chooser_.servedShare()[40], 0);
    chooser_.update(frames_, 1, true);
    EXPECT_EQ(chooser_.servedShare()[40], 1);
    EXPECT_EQ(chooser_.servedShare()[180], 0) << "1938 Hz is the second layer's own";
}

TEST_F(LowBandChooserTest, PeaksFarBelowANeighbourWithinTenBinsDoNotCount)
{
    constexpr double weak = 3e-5;  // 45 dB below
    EXPECT_FALSE(isServed(50, {{40}, {50, weak}}));
    EXPECT_TRUE(isServed(51, {{40}, {51, weak}}));
    EXPECT_FALSE(isServed(40, {{40, weak}, {50}}));
    EXPECT_TRUE(isServed(40, {{40, weak}, {51}}));
    EXPECT_TRUE(isServed(40, {{40}, {42, weak}})) << "nor do they stand in the way";
    EXPECT_TRUE(isServed(40, {{38, weak}, {40}}));
    EXPECT_FALSE(isServed(40, {{40}, {42, 3e-4}})) << "35 dB below";
}

TEST_F(LowBandChooserTest, PeaksOfTheLowestBandAreTakenToItsEnd)
{
    // 1300 Hz are 120.7 bins of the second layer.
    EXPECT_TRUE(isServed(121, {{121}}));
    EXPECT_FALSE(isServed(122, {{122}}));
    EXPECT_FALSE(isServed(121, {{121}, {124}})) << "neighbours above the band count";
}

TEST_F(LowBandChooserTest, BinsBetweenTheDeepestValleysAreTaken)
{
    const Peak low{10, 1, 0.45, 10};
    EXPECT_TRUE(isServed(3, {low}));
    EXPECT_FALSE(isServed(2, {low})) << "that is left to DC";
    const Peak high{121, 1, 0.3, 20};
    EXPECT_TRUE(isServed(133, {high})) << "12 bins beyond the band";
    EXPECT_FALSE(isServed(134, {high}));
    EXPECT_FALSE(isServed(40, {{40, 1, 0.3, 8}, {50}})) << "no valley of 30 dB";
    EXPECT_TRUE(isServed(40, {{40, 1, 0.4, 8}, {50}}));
}

TEST_F(LowBandChooserTest, SteadyLevelIsWithinADecibelOverThreeFrames)
{
    for (const std::int64_t number : {0, 2}) {
        for (const float change : {1.2F, 1 / 1.2F, 1.3F, 1 / 1.3F}) {
            setPeaks({{40}}, 1);
            chooser_.reset();
            frames_.at(number).spreadPower[40] *= change;
            chooser_.update(frames_, 1, true);
            const bool isSteady = change < 1.25F && change > 0.8F;
            EXPECT_EQ(chooser_.servedShare()[40] == 1, isSteady) << number << ": " << change;
        }
    }
}

TEST_F(LowBandChooserTest, WeightsOfBothLayersAddUpToThoseOfTheirBands)
{
    setPeaks({{40}}, 1);
    chooser_.update(frames_, 1, true);
    for (int k = 10; k < 250; ++k) {
        const auto frequency = (k + second_.firstBin) * second_.geometry.binWidth();
        const double lowBin = frequency / lowest_.geometry.binWidth() - lowest_.firstBin;
        const int below = static_cast<int>(lowBin);
        const bool changesHands = std::abs(k - 40) >= 2 && std::abs(k - 40) <= 6;
        if (below + 1 >= lowest_.binCount || changesHands) {
            continue;  // where the share of one is between two bins of the other
        }
        const double part = lowBin - below;
        const auto& low = chooser_.lowestWeights();
        const double sum = static_cast<double>(chooser_.secondWeights()[k])
                           + (1 - part) * static_cast<double>(low[below])
                           + part * static_cast<double>(low[below + 1]);
        EXPECT_NEAR(sum, 1, 5e-3) << k;
    }
}

TEST_F(LowBandChooserTest, MovementIsHeldOverTurningPoints)
{
    setPeaks({{40}}, 1);
    chooser_.update(frames_, 1, true);
    setPeaks({{40}}, 0);
    chooser_.update(frames_, 1, true);
    EXPECT_EQ(chooser_.servedShare()[40], 1);
    for (int m = 0; m < 40; ++m) {
        chooser_.update(frames_, 1, true);
    }
    EXPECT_EQ(chooser_.servedShare()[40], 0);
}

}  // namespace
}  // namespace tonvale::timepitch
