// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/PhaseTracker.h"
#include "Platform/Audio/TimePitch/RegionShifter.h"

namespace tonvale::timepitch {
namespace {

/// One steady partial on a bin of the second layer.
class PhaseTrackerTest : public testing::Test {
protected:
    PhaseTrackerTest()
        : design_(makeGeometry(44100).layers[1])
        , frame_(1, design_.binCount)
        , share_(design_.binCount)
        , tracker_(design_)
    {
        const auto advance = static_cast<float>(design_.expectedAdvance(bin));
        frame_.peaks.push_back({.bin = bin,
                                .regionEnd = design_.binCount,
                                .previousBin = bin,
                                .valley = 0,
                                .advanceBefore = advance,
                                .advanceAfter = advance});
        frame_.spreadPower[bin] = 1;
    }

    float next(double ratio, const Onset* firstAfter = nullptr,
               const Array<float>* powerBefore = nullptr)
    {
        reference_ += design_.geometry.hop;
        tracker_.advance({frame_, reference_, ratio, share_, nullptr, 0, firstAfter, powerBefore});
        return tracker_.rotation(0);
    }

    static constexpr int bin = 200;
    LayerDesign design_;
    SpectrumFrame frame_;
    Array<float> share_;
    PhaseTracker tracker_;
    Frames reference_ = 0;
};

TEST_F(PhaseTrackerTest, RotationGrowsByTheAdvanceTimesTheShift)
{
    constexpr double ratio = 1.25;
    tracker_.reset(ratio);
    double expected = 0;
    for (int m = 0; m < 10; ++m) {
        expected += 0.25 * design_.expectedAdvance(bin);
        EXPECT_NEAR(wrapPhase(static_cast<double>(next(ratio)) - expected), 0, 2e-3) << m;
    }
}

TEST_F(PhaseTrackerTest, AtUnisonRotationsStayZero)
{
    tracker_.reset(1);
    for (int m = 0; m < 10; ++m) {
        EXPECT_EQ(next(1), 0);
    }
}

TEST_F(PhaseTrackerTest, BackAtUnisonRotationsReturnToZeroSlowly)
{
    tracker_.reset(1.25);
    for (int m = 0; m < 5; ++m) {
        next(1.25);
    }
    next(1);  // the frame of the change itself still gains
    const double step = PhaseTracker::returnSpeed * design_.geometry.hop / 44100;
    double before = std::abs(static_cast<double>(next(1)));
    for (int m = 0; m < 200 && before > 0; ++m) {
        const double now = std::abs(static_cast<double>(next(1)));
        EXPECT_NEAR(before - now, std::min(step, before), 1e-5);
        before = now;
    }
    EXPECT_EQ(before, 0);
}

TEST_F(PhaseTrackerTest, ChangeOfRatioMeetsHalfAHopBeforeTheFrame)
{
    tracker_.reset(1.25);
    const double before = static_cast<double>(next(1.25));
    const double after = static_cast<double>(next(0.8));
    const double half = design_.expectedAdvance(bin) / 2;  // this layer is symmetric
    EXPECT_NEAR(wrapPhase(before + 0.25 * half - (after + 0.2 * half)), 0, 2e-3);
}

TEST_F(PhaseTrackerTest, RisingPeakIsLockedToTheOnset)
{
    tracker_.reset(1.5);
    next(1.5);
    const Onset onset{.position = 1900, .layers = 7, .number = 0, .remainder = {1, 1, 1}};
    const Array<float> silent(design_.binCount);
    const double speed = design_.expectedAdvance(bin) / design_.geometry.hop;
    const auto rotation = static_cast<double>(next(1.5, &onset, &silent));  // reference 2048
    EXPECT_NEAR(wrapPhase(rotation - 0.5 * speed * (2048 - 1900)), 0, 2e-3);
}

TEST_F(PhaseTrackerTest, PeakThatHardlyRisesKeepsItsPhaseAtAnOnset)
{
    Array<float> loud(design_.binCount);
    loud.fill(0.5F);  // 3 dB: old to the split, so its frames overlap with those before the onset
    const Onset onset{.position = 1900, .layers = 7, .number = 0, .remainder = {1, 1, 1}};
    PhaseTracker other(design_);
    tracker_.reset(1.5);
    other.reset(1.5);
    next(1.5);
    other.advance({frame_, 1024, 1.5, share_, nullptr, 0, nullptr, nullptr});
    other.advance({frame_, 2048, 1.5, share_, nullptr, 0, nullptr, nullptr});
    EXPECT_EQ(next(1.5, &onset, &loud), other.rotation(0));
}

TEST_F(PhaseTrackerTest, CrossoverPeakFollowsTheLayerBelow)
{
    const Geometry geometry = makeGeometry(44100);
    const LayerDesign lowDesign(geometry.layers[0]);
    PhaseTracker low(lowDesign);
    const int upperBin = static_cast<int>(900 / design_.geometry.binWidth());
    const int lowBin = lowDesign.nearestBin(design_, upperBin);
    SpectrumFrame lowFrame(1, lowDesign.binCount);
    const auto advance = static_cast<float>(lowDesign.expectedAdvance(lowBin));
    lowFrame.peaks.push_back({lowBin, lowDesign.binCount, lowBin, 0, advance, advance});
    low.reset(1.25);
    low.advance({lowFrame, 1024, 1.25, share_, nullptr, 0, nullptr, nullptr});
    frame_.peaks[0].bin = upperBin;
    tracker_.reset(1.25);
    tracker_.advance({frame_, 1024, 1.25, share_, &low, 0, nullptr, nullptr});
    const double distance = -lowDesign.windows.phaseOffset();
    const double expected = static_cast<double>(low.rotation(0))
                            + 0.25 * static_cast<double>(advance) / 1024 * distance;
    EXPECT_NEAR(wrapPhase(static_cast<double>(tracker_.rotation(0)) - expected), 0, 2e-3);
}

/// The rotation that a bin of a tracker stands at, as a new peak inherits it: it has no advance.
float inherited(PhaseTracker& tracker, const LayerDesign& design, int bin)
{
    SpectrumFrame frame(1, design.binCount);
    const Array<float> share(design.binCount);
    frame.peaks.push_back(
        {.bin = 5, .regionEnd = design.binCount, .previousBin = bin, .valley = 0});
    tracker.advance({frame, 0, 1.25, share, nullptr, 0, nullptr, nullptr});
    return tracker.rotation(0);
}

TEST_F(PhaseTrackerTest, RotationIsKeptForEveryBinOfARegion)
{
    const auto advance = static_cast<float>(design_.expectedAdvance(100));
    frame_.peaks.insert(frame_.peaks.begin(), {.bin = 100,
                                               .regionEnd = 150,
                                               .previousBin = 100,
                                               .valley = 0,
                                               .advanceBefore = advance,
                                               .advanceAfter = advance});
    for (const int asked : {0, 99, 149, 150, design_.binCount - 1}) {
        PhaseTracker tracker(design_);
        tracker.reset(1.25);
        tracker.advance({frame_, 1024, 1.25, share_, nullptr, 0, nullptr, nullptr});
        const float wanted = tracker.rotation(asked < 150 ? 0 : 1);
        ASSERT_NE(tracker.rotation(0), tracker.rotation(1));
        EXPECT_EQ(inherited(tracker, design_, asked), wanted) << asked;
    }
}

TEST_F(PhaseTrackerTest, BinsThatAreServedForTheLayerBelowAreHandedToIt)
{
    const LayerDesign lowDesign(makeGeometry(44100).layers[0]);
    tracker_.reset(1.25);
    const auto rotation = static_cast<double>(next(1.25));
    const double speed = 0.25 * design_.expectedAdvance(bin) / design_.geometry.hop;
    const double distance = -lowDesign.windows.phaseOffset();  // this layer has none
    Array<float> share(lowDesign.binCount);
    share.fill(1);
    share[40] = 0.4F;  // less than a half
    for (const int asked : {0, 1, 40, lowDesign.binCount - 1}) {
        PhaseTracker low(lowDesign);
        low.reset(1.25);
        tracker_.handTo(low, share);
        const double wanted = asked == 40 ? 0 : rotation - speed * distance;
        const auto handed = static_cast<double>(inherited(low, lowDesign, asked));
        EXPECT_NEAR(wrapPhase(handed - wanted), 0, 2e-3) << asked;
    }
}

TEST_F(PhaseTrackerTest, RotationsReturnWhileNothingSoundsToo)
{
    tracker_.reset(1.25);
    next(1.25);
    next(1);
    const std::vector<SpectralPeak> peaks = std::exchange(frame_.peaks, {});
    for (int m = 0; m < 200; ++m) {
        tracker_.advance({frame_, 0, 1, share_, nullptr, 0, nullptr, nullptr});
    }
    frame_.peaks = peaks;
    EXPECT_EQ(next(1), 0);
}

TEST_F(PhaseTrackerTest, RegionsMoveByTheirPeaksFrequency)
{
    Array<float> weights(design_.binCount);
    weights.fill(1);
    tracker_.reset(1.5);
    next(1.5);
    RegionShifter shifter(design_);
    frame_.power[bin] = 1;
    shifter.plan(frame_, tracker_, 1.5, weights, true);
    ChannelSpectra source(1, design_.binCount);
    ChannelSpectra target(1, design_.geometry.decimatedSize() / 2 + 1);
    source.real(0)[bin] = 1;
    shifter.apply(source, target, 1, false);
    const int moved = (bin + design_.firstBin) * 3 / 2;
    EXPECT_NEAR(std::hypot(target.real(0)[moved], target.imaginary(0)[moved]), 1, 1e-4);
    EXPECT_NEAR(std::atan2(target.imaginary(0)[moved], target.real(0)[moved]), tracker_.rotation(0),
                1e-3);
    EXPECT_EQ(target.real(0)[bin], 0);
}

}  // namespace
}  // namespace tonvale::timepitch
