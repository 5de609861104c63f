// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/Interpolator.h"
#include "Platform/Audio/TimePitch/OctaveDecimator.h"
#include "Platform/Audio/TimePitch/VectorKernels.h"

namespace tonvale::timepitch {
namespace {

TEST(InputHistoryTest, KeepsTheLastFramesWhateverTheStepsAre)
{
    InputHistory history(1, 100, 64, 8);
    int next = 0;
    for (const int step : {1, 63, 64, 5, 64, 64, 64, 17, 64, 64, 64}) {
        for (int i = 0; i < step; ++i) {
            history.tail(0)[i] = static_cast<float>(++next);  // frame n holds n + 1
        }
        history.commit(step);
        ASSERT_EQ(history.end(), next);
        const Frames start = history.end() - 100;
        const float* window = history.at(0, start);
        for (int i = 0; i < 100; ++i) {
            EXPECT_EQ(window[i], start + i < 0 ? 0.0F : static_cast<float>(start + i + 1));
        }
        for (int i = 100; i < 108; ++i) {
            EXPECT_EQ(window[i], 0) << "not written yet";
        }
    }
}

/// Decimates a cosine in steps of `step` frames and returns the largest error.
double decimationError(double cyclesPerFrame, int step, double expectedGain)
{
    const OctaveDecimator decimator;
    InputHistory input(1, 256, 256);
    InputHistory output(1, 256, 256);
    double worst = 0;
    Frames checked = 20;  // the filter sees the silence before the start until then
    for (int round = 0; round < 50; ++round) {
        for (int i = 0; i < step; ++i) {
            const auto n = static_cast<double>(input.end() + i);
            input.tail(0)[i] = static_cast<float>(std::cos(twoPi * cyclesPerFrame * n + 1));
        }
        input.commit(step);
        decimator.advance(input, output);
        for (; checked < output.end(); ++checked) {
            const double ideal =
                expectedGain
                * std::cos(twoPi * cyclesPerFrame * 2 * static_cast<double>(checked) + 1);
            worst = std::max(worst, std::abs(static_cast<double>(*output.at(0, checked)) - ideal));
        }
    }
    return worst;
}

TEST(OctaveDecimatorTest, PassBandIsFlatAndInPlace)
{
    for (const double frequency : {0.0, 0.02, 0.05, 0.1}) {
        EXPECT_LT(decimationError(frequency, 64, 1), 3e-4) << frequency;
    }
}

TEST(OctaveDecimatorTest, ImagesOfThePassBandAreRemoved)
{
    for (const double frequency : {0.4, 0.43, 0.46, 0.5}) {
        EXPECT_LT(decimationError(frequency, 64, 0), 3e-4) << frequency;  // -70 dB
    }
}

TEST(OctaveDecimatorTest, StepsOfAnySizeGiveTheSame)
{
    for (const int step : {1, 3, 31, 200}) {
        EXPECT_LT(decimationError(0.07, step, 1), 3e-4) << step;
    }
}

TEST(InterpolatorTest, BandOfTheLayerComesBackInPlace)
{
    const Geometry geometry = makeGeometry(44100);
    for (std::size_t index = 0; index < 2; ++index) {
        const LayerGeometry& layer = geometry.layers[index];
        constexpr int count = 128;
        Interpolator interpolator(layer, count);
        const double octaveUp = 2 * (layer.upper.centre + layer.upper.halfWidth);
        for (const double frequency : {0.0, octaveUp / 3, octaveUp}) {
            const double step = twoPi * frequency * layer.decimation / layer.sampleRate;
            Array<float> in(count + 2 * interpolator.samplesAfter() + kernels::overrun);
            Array<float> out(count * layer.decimation + kernels::overrun);
            for (int i = 0; i < in.size(); ++i) {
                in[i] = static_cast<float>(std::cos(step * (i - interpolator.samplesBefore())));
            }
            interpolator.process(in.data(), count, out.data());
            for (int i = 0; i < count * layer.decimation; ++i) {
                EXPECT_NEAR(static_cast<double>(out[i]), std::cos(step * i / layer.decimation),
                            2e-3)
                    << frequency << " Hz, layer " << index;  // -54 dB at the very edge
            }
        }
    }
}

}  // namespace
}  // namespace tonvale::timepitch
