// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/OctaveInput.h"
#include "Platform/Audio/TimePitch/OnsetGate.h"
#include "Platform/Audio/TimePitch/OnsetSplit.h"
#include "TestSignals.h"

namespace tonvale::timepitch {
namespace {

class OnsetSplitTest : public testing::Test {
protected:
    OnsetSplitTest()
        : design_(makeGeometry(44100).layers[1])
        , frames_(1, design_.binCount)
        , split_(design_)
    {
        for (std::int64_t number = 0; number < FrameHistory::capacity; ++number) {
            frames_.at(number).spreadPower.fill(1);
        }
    }

    LayerDesign design_;
    FrameHistory frames_;
    OnsetSplit split_;
    Onset onset_{.position = 10 * 1024, .layers = 7, .number = 0, .remainder = {1, 1, 1}};
};

TEST_F(OnsetSplitTest, FrameWithoutOnsetIsNotSplit)
{
    split_.update(frames_, 10, {});
    EXPECT_FALSE(split_.isSplit());
}

TEST_F(OnsetSplitTest, OnlyBinsThatRoseAreNew)
{
    frames_.at(10).spreadPower[50] = 100;
    split_.update(frames_, 10, {.current = &onset_, .next = nullptr});
    EXPECT_TRUE(split_.isSplit());
    EXPECT_EQ(split_.newShare()[50], 1);
    EXPECT_EQ(split_.oldShare()[50], 0);
    EXPECT_EQ(split_.newShare()[60], 0);
    EXPECT_EQ(split_.oldShare()[60], 1);
}

TEST_F(OnsetSplitTest, AllHeardBinsAreDivided)
{
    for (const LayerGeometry& layer : makeGeometry(44100).layers) {
        const LayerDesign design(layer);
        FrameHistory frames(1, design.binCount);
        const Onset onset{
            .position = 10 * layer.hop, .layers = 7, .number = 0, .remainder = {1, 1, 1}};
        frames.at(10).spreadPower.fill(1);  // and nothing before
        OnsetSplit split(design);
        split.update(frames, 10, {.current = &onset, .next = nullptr});
        for (int k = layer.index == 0 ? 0 : design.activeBegin; k < design.activeEnd; ++k) {
            ASSERT_EQ(split.newShare()[k], 1) << k << " of layer " << layer.index;
            ASSERT_EQ(split.oldShare()[k], 0) << k << " of layer " << layer.index;
        }
    }
}

TEST_F(OnsetSplitTest, ComparisonIsWithTheLastFrameThatEndedBefore)
{
    EXPECT_EQ(OnsetSplit::frameBefore(design_.geometry, onset_), 8);  // ends at 8 + 2 hops
    onset_.position -= 1;
    EXPECT_EQ(OnsetSplit::frameBefore(design_.geometry, onset_), 7);
    frames_.at(7).spreadPower[50] = 0;
    split_.update(frames_, 10, {.current = &onset_, .next = nullptr});
    EXPECT_EQ(split_.newShare()[50], 1);
}

TEST_F(OnsetSplitTest, WhatDiesAwayBeforeTheOnsetDoesNotPassForOld)
{
    onset_.remainder = {1, 0.01F, 1};
    split_.update(frames_, 10, {.current = &onset_, .next = nullptr});
    EXPECT_EQ(split_.newShare()[50], 1);
}

TEST_F(OnsetSplitTest, WhatIsNewToEitherOnsetIsNew)
{
    const Onset next{.position = 12 * 1024, .layers = 7, .number = 1, .remainder = {1, 1, 1}};
    frames_.at(11).spreadPower[50] = 100;  // since the first onset
    frames_.at(8).spreadPower[60] = 100;   // loud before the first one, but not before the second
    frames_.at(11).spreadPower[60] = 100;
    split_.update(frames_, 11, {.current = &onset_, .next = &next});
    EXPECT_TRUE(split_.isSplit());
    EXPECT_EQ(split_.newShare()[50], 1);
    EXPECT_EQ(split_.newShare()[60], 1);
    EXPECT_EQ(split_.oldShare()[60], 0);
    EXPECT_EQ(split_.newShare()[70], 0);
    EXPECT_EQ(split_.oldShare()[70], 1);
}

TEST(OnsetGateTest, NothingIsHeardBeforeTheFadeAndAllAfterTheOnset)
{
    const Geometry geometry = makeGeometry(44100);
    const LayerDesign design(geometry.layers[2]);
    const SpanGain spanGain(design.geometry, design.windows);
    OnsetGate gate(design.geometry, spanGain, geometry.block);
    OnsetDetector detector(geometry, 1);
    OctaveInput input(geometry, 1, OnsetDetector::framesNeeded(geometry) + geometry.block);
    test::Signal loud = test::noise(0.9, 8192, 1, 3);  // so that the limiter has no work
    for (std::size_t done = 0; done < 8192; done += 512) {
        const float* channel = loud[0].data() + done;
        input.advance(&channel);
        detector.advance(input.whole());
    }
    constexpr Frames onset = 4096 + 300;
    // All frames are there, as from the middle of a run on: the cover is 1.
    const AudibleSpan span{0, AudibleSpan::openEnd, AudibleSpan::openBegin, AudibleSpan::openEnd};
    test::Channel samples(512, 0.1F);
    test::Channel output(512);
    float* in = samples.data();
    float* out = output.data();
    float limit = 1;
    gate.process({4096, 0, 512}, onset, span, detector, limit, {&in, 1}, {&out, 1});
    for (std::size_t i = 0; i < 512; ++i) {
        if (i < 300 - static_cast<std::size_t>(gate.fadeFrames())) {
            EXPECT_EQ(output[i], 0) << i;
        } else if (i >= 300) {
            EXPECT_NEAR(output[i], 0.1F, 1e-5F) << i;
        } else {
            EXPECT_GE(output[i], output[i - 1]) << i;
        }
    }
}

TEST(OnsetGateTest, PowerIsLimitedToTenTimesTheInput)
{
    const Geometry geometry = makeGeometry(44100);
    const LayerDesign design(geometry.layers[2]);
    const SpanGain spanGain(design.geometry, design.windows);
    OnsetGate gate(design.geometry, spanGain, geometry.block);
    const OnsetDetector silent(geometry, 1);
    test::Channel samples(512, 0.1F);
    test::Channel output(512);
    float* in = samples.data();
    float* out = output.data();
    float limit = 1;
    gate.process({8192, 0, 512}, 8000, {.firstFrame = 0}, silent, limit, {&in, 1}, {&out, 1});
    EXPECT_LT(limit, 1e-4F) << "the input is silent: the ring must go";
    EXPECT_LT(std::abs(output[511]), 1e-4F);
}

}  // namespace
}  // namespace tonvale::timepitch
