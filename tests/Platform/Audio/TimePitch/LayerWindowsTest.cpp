// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/BandWeights.h"
#include "Platform/Audio/TimePitch/LayerWindows.h"

namespace tonvale::timepitch {
namespace {

constexpr double rates[] = {8000, 32000, 44100, 192000};

TEST(LayerWindowsTest, ProductsAddUpToOne)
{
    for (const double rate : rates) {
        for (const LayerGeometry& layer : makeGeometry(rate).layers) {
            const LayerWindows windows(layer);
            for (int offset = 0; offset < layer.hop; offset += 7) {
                double sum = 0;
                for (int n = offset; n < 2 * layer.release; n += layer.hop) {
                    sum += static_cast<double>(windows.product()[n]);
                }
                EXPECT_NEAR(sum, 1, 1e-6) << rate << " layer " << layer.index;
            }
        }
    }
}

TEST(LayerWindowsTest, AnalysisTimesSynthesisIsTheProduct)
{
    for (const LayerGeometry& layer : makeGeometry(44100).layers) {
        const LayerWindows windows(layer);
        const int step = layer.decimation;
        const int first = (layer.attack - layer.release) / step;
        for (int n = 1; n < windows.synthesis().size(); ++n) {
            const float analysis = windows.analysis()[first + n] / static_cast<float>(step);
            const float both = analysis * windows.synthesis()[n] * static_cast<float>(layer.size());
            EXPECT_NEAR(both, windows.product()[n * step], 1e-6F) << "layer " << layer.index;
        }
    }
}

TEST(LayerWindowsTest, PhaseCentreLiesBeforeTheReferenceOfAsymmetricWindowsOnly)
{
    const Geometry geometry = makeGeometry(44100);
    EXPECT_LT(LayerWindows(geometry.layers[0]).phaseOffset(), -500);
    EXPECT_EQ(LayerWindows(geometry.layers[0]).phaseOffset() % 4, 0);
    EXPECT_EQ(LayerWindows(geometry.layers[1]).phaseOffset(), 0);
    EXPECT_EQ(LayerWindows(geometry.layers[2]).phaseOffset(), 0);
}

TEST(LayerWindowsTest, LagWindowFallsFromOne)
{
    const LayerWindows windows(makeGeometry(44100).layers[0]);
    const Array<double> rho = windows.lagWindow(1000);
    EXPECT_NEAR(rho[0], 1, 1e-9);
    for (int lag = 1; lag <= 1000; ++lag) {
        EXPECT_LT(rho[lag], rho[lag - 1] + 1e-12) << lag;
    }
}

/// The gain of a band at a frequency: its weights act as their impulse response times rho.
double bandGain(const LayerGeometry& layer, double frequency)
{
    const LayerWindows windows(layer);
    const Array<float> weights = makeBandWeights(layer, windows);
    const int size = layer.size();
    const Array<double> rho = windows.lagWindow(size / 5);
    double gain = 0;
    for (int lag = -size / 5; lag <= size / 5; ++lag) {
        double response = 0;  // of the weights, by the definition of the inverse transform
        for (int bin = 0; bin < weights.size(); ++bin) {
            const bool once = bin == 0 || bin == size / 2;
            response += (once ? 1 : 2) * static_cast<double>(weights[bin])
                        * std::cos(twoPi * bin * lag / size);
        }
        gain += response / size * rho[std::abs(lag)]
                * std::cos(twoPi * frequency * lag / layer.sampleRate);
    }
    return gain;
}

TEST(BandWeightsTest, BandsAddUpToTheInputInAndBesideTheCrossovers)
{
    const Geometry geometry = makeGeometry(8000);  // the shortest transforms: two layers
    for (const double frequency : {300.0, 800.0, 1000.0, 1130.0, 1250.0, 2000.0}) {
        double sum = 0;
        for (const LayerGeometry& layer : geometry.layers) {
            sum += bandGain(layer, frequency);
        }
        EXPECT_NEAR(sum, 1, 1e-3) << frequency << " Hz: a partial must not change its level";
    }
}

TEST(BandWeightsTest, NothingIsLeftFarOutsideTheBand)
{
    const LayerGeometry layer = makeGeometry(44100).layers[1];
    const Array<float> weights = makeBandWeights(layer, LayerWindows(layer));
    EXPECT_NEAR(weights[static_cast<int>(200 / layer.binWidth())], 0, 1e-4);
    EXPECT_NEAR(weights[static_cast<int>(6000 / layer.binWidth())], 0, 1e-4);
    EXPECT_NEAR(weights[static_cast<int>(2000 / layer.binWidth())], 1, 1e-3);
}

}  // namespace
}  // namespace tonvale::timepitch
