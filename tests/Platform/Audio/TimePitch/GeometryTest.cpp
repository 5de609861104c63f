// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/Geometry.h"

namespace tonvale::timepitch {
namespace {

constexpr double usualRates[] = {8000,  11025, 16000, 22050, 24000, 32000,  37800,
                                 44100, 48000, 64000, 88200, 96000, 176400, 192000};

TEST(GeometryTest, SizesAreThoseOfTheDesignAtCdRate)
{
    const Geometry geometry = makeGeometry(44100);
    ASSERT_EQ(geometry.layers.size(), 3U);
    EXPECT_EQ(geometry.layers[0].size(), 6912);
    EXPECT_EQ(geometry.layers[0].decimation, 4);
    EXPECT_EQ(geometry.layers[1].size(), 4096);
    EXPECT_EQ(geometry.layers[1].decimation, 2);
    EXPECT_EQ(geometry.layers[2].size(), 2048);
    EXPECT_EQ(geometry.block, 512);
    EXPECT_EQ(geometry.latency(), 5120);
}

TEST(GeometryTest, LatencyStaysNearTheDesignAtEveryRate)
{
    for (const double rate : usualRates) {
        const double seconds = makeGeometry(rate).latency() / rate;
        EXPECT_GT(seconds, 0.100) << rate;
        EXPECT_LT(seconds, 0.150) << rate;  // factors are at most sqrt(1.5) off
    }
}

TEST(GeometryTest, SizesFollowEveryRateWithinAQuarter)
{
    const Geometry design = makeGeometry(44100);
    for (double rate = 5600; rate < 400000; rate *= 1.013) {
        const Geometry geometry = makeGeometry(rate);
        const double factor = static_cast<double>(geometry.longestWindow) / design.longestWindow;
        EXPECT_GT(factor * 44100 / rate, 1 / std::sqrt(1.5) - 1e-9) << rate;
        EXPECT_LT(factor * 44100 / rate, std::sqrt(1.5) + 1e-9) << rate;
    }
    EXPECT_EQ(makeGeometry(100).longestWindow, design.longestWindow / 8) << "and no smaller";
}

TEST(GeometryTest, LayersWorkAtTheLowestRateThatHoldsTheirBandAnOctaveUp)
{
    const auto decimations = [](double rate) {
        std::vector<int> result;
        for (const LayerGeometry& layer : makeGeometry(rate).layers) {
            result.push_back(layer.decimation);
        }
        return result;
    };
    using Decimations = std::vector<int>;
    EXPECT_EQ(decimations(8000), (Decimations{1, 1}));
    EXPECT_EQ(decimations(22050), (Decimations{2, 1, 1}));
    EXPECT_EQ(decimations(32000), (Decimations{4, 1, 1}));
    EXPECT_EQ(decimations(44100), (Decimations{4, 2, 1}));
    EXPECT_EQ(decimations(64000), (Decimations{8, 2, 1}));
    EXPECT_EQ(decimations(96000), (Decimations{8, 4, 1}));
    EXPECT_EQ(decimations(192000), (Decimations{8, 8, 1}));
    EXPECT_EQ(decimations(768000), (Decimations{8, 8, 1}));
}

TEST(GeometryTest, HopsAndDecimationsDivideEverything)
{
    for (const double rate : usualRates) {
        const Geometry geometry = makeGeometry(rate);
        for (const LayerGeometry& layer : geometry.layers) {
            EXPECT_EQ(geometry.longestHop % layer.hop, 0) << rate;
            EXPECT_EQ(layer.hop % geometry.block, 0) << rate;
            EXPECT_EQ(geometry.lookAhead % layer.hop, 0) << rate;
            EXPECT_EQ(geometry.block % (8 * layer.decimation), 0) << rate;
            EXPECT_EQ(layer.attack % layer.decimation, 0) << rate;
            EXPECT_EQ(layer.decimatedSize() % 2, 0) << rate;
        }
    }
}

TEST(GeometryTest, TransformsHaveOnlySmallPrimeFactors)
{
    for (const double rate : usualRates) {
        for (const LayerGeometry& layer : makeGeometry(rate).layers) {
            int rest = layer.decimatedSize();
            for (const int prime : {2, 3, 5}) {
                while (rest % prime == 0) {
                    rest /= prime;
                }
            }
            EXPECT_EQ(rest, 1) << rate << " Hz, layer " << layer.index;
        }
    }
}

TEST(GeometryTest, OnlyTheLayerWithTheShortestWindowsCanWait)
{
    const Geometry geometry = makeGeometry(192000);
    EXPECT_FALSE(geometry.canWait(geometry.layers[0]));
    EXPECT_FALSE(geometry.canWait(geometry.layers[1]));
    EXPECT_TRUE(geometry.canWait(geometry.layers[2]));
    for (const LayerGeometry& layer : makeGeometry(8000).layers) {
        EXPECT_FALSE(makeGeometry(8000).canWait(layer));
    }
}

TEST(GeometryTest, LayersWithoutABandAreLeftOut)
{
    EXPECT_EQ(makeGeometry(2000).layers.size(), 1U);
    EXPECT_EQ(makeGeometry(2000).block, makeGeometry(2000).layers[0].hop);
    EXPECT_EQ(makeGeometry(3190).layers.size(), 1U);  // the second needs 1600 Hz
    EXPECT_EQ(makeGeometry(3210).layers.size(), 2U);
    EXPECT_EQ(makeGeometry(8000).layers.size(), 2U);
    EXPECT_FALSE(makeGeometry(8000).layers.back().upper.exists());
    EXPECT_EQ(makeGeometry(9390).layers.size(), 2U);
    EXPECT_EQ(makeGeometry(9410).layers.size(), 3U);
}

TEST(GeometryTest, ShiftedBandFitsTheDecimatedRate)
{
    for (const double rate : usualRates) {
        for (const LayerGeometry& layer : makeGeometry(rate).layers) {
            if (layer.decimation > 1) {
                const double octaveUp = 2 * (layer.upper.centre + layer.upper.halfWidth);
                EXPECT_LT(octaveUp, rate / layer.decimation / 2) << rate;
            }
        }
    }
}

}  // namespace
}  // namespace tonvale::timepitch
