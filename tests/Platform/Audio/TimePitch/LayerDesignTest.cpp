// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/LayerDesign.h"

namespace tonvale::timepitch {
namespace {

/// FFT bins [begin, end) whose weight is not zero.
struct Band {
    int begin;
    int end;
};

Band bandOf(const LayerDesign& design)
{
    const Array<float>& weights = design.bandWeights;
    const auto isHeard = [](float weight) { return weight != 0; };
    const float* begin = std::find_if(weights.begin(), weights.end(), isHeard);
    int end = static_cast<int>(weights.size());
    while (!isHeard(weights[end - 1])) {
        --end;
    }
    return {static_cast<int>(begin - weights.begin()), end};
}

TEST(LayerDesignTest, EightBinsAreStoredOnEitherSideOfTheBand)
{
    for (const double rate : {8000.0, 44100.0, 192000.0}) {
        for (const LayerGeometry& layer : makeGeometry(rate).layers) {
            const LayerDesign design(layer);
            const Band band = bandOf(design);
            // The second layer may serve all of the lowest band.
            const int begin = layer.index < 2 ? 0 : std::max(0, band.begin - 8);
            EXPECT_EQ(design.firstBin, begin) << rate << " Hz, layer " << layer.index;
            const int end = std::min(layer.decimatedSize() / 2 + 1, band.end + 8);
            EXPECT_EQ(design.firstBin + design.binCount, end)
                << rate << " Hz, layer " << layer.index;
        }
    }
}

TEST(LayerDesignTest, OutputIsMadeFromTheBandAsFarAsTheKernelReaches)
{
    for (const double rate : {8000.0, 44100.0, 192000.0}) {
        for (const LayerGeometry& layer : makeGeometry(rate).layers) {
            const LayerDesign design(layer);
            const Band band = bandOf(design);
            const int first = layer.index == 0 ? 1 : layer.index == 1 ? 3 : std::max(3, band.begin);
            EXPECT_EQ(design.firstBin + design.activeBegin, first)
                << rate << " Hz, layer " << layer.index;
            const int reached = design.firstBin + design.binCount - 3;
            EXPECT_EQ(design.firstBin + design.activeEnd, std::min(band.end, reached))
                << rate << " Hz, layer " << layer.index;
        }
    }
}

TEST(LayerDesignTest, LowestLayerAloneCarriesDc)
{
    const Geometry geometry = makeGeometry(44100);
    EXPECT_TRUE(LayerDesign(geometry.layers[0]).carriesDc());
    EXPECT_FALSE(LayerDesign(geometry.layers[1]).carriesDc());
    EXPECT_FALSE(LayerDesign(geometry.layers[2]).carriesDc());
}

TEST(LayerDesignTest, NearestBinsOfTwoLayersHaveNearlyOneFrequency)
{
    const Geometry geometry = makeGeometry(44100);
    const LayerDesign lowest(geometry.layers[0]);
    const LayerDesign top(geometry.layers[2]);
    const auto frequency = [](const LayerDesign& design, int bin) {
        return (bin + design.firstBin) * design.geometry.binWidth();
    };
    const LayerDesign second(geometry.layers[1]);
    for (int k = 0; k < lowest.binCount; ++k) {
        EXPECT_NEAR(frequency(second, second.nearestBin(lowest, k)), frequency(lowest, k),
                    second.geometry.binWidth() / 2);
    }
    for (int k = 0; k < 100; ++k) {
        EXPECT_NEAR(frequency(second, second.nearestBin(top, k)), frequency(top, k),
                    second.geometry.binWidth() / 2);
    }
    EXPECT_EQ(top.nearestBin(lowest, 0), 0) << "not beyond the first";
    EXPECT_EQ(lowest.nearestBin(top, top.binCount - 1), lowest.binCount - 1) << "nor the last";
}

}  // namespace
}  // namespace tonvale::timepitch
