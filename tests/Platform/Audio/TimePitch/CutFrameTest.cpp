// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>
#include <cstdint>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/CutFrame.h"
#include "Platform/Audio/TimePitch/OctaveInput.h"
#include "TestSignals.h"

namespace tonvale::timepitch {
namespace {

constexpr double rate = 44100;

/// One frame of one layer of a signal, cut at some place.
class CutFrameTest : public testing::TestWithParam<std::size_t> {
protected:
    CutFrameTest() : geometry_(makeGeometry(rate)), design_(geometry_.layers[GetParam()]) {}

    [[nodiscard]] CutFrame analysed(const test::Channel& signal, Frames end) const
    {
        OctaveInput input(geometry_, 1, geometry_.longestWindow + geometry_.lookAhead);
        for (std::size_t done = 0; done < signal.size(); done += 512) {
            const float* channel = signal.data() + done;
            input.advance(&channel);
        }
        CutFrame frame(design_, 1);
        frame.analyse(reference_ / design_.geometry.hop, end, input.of(design_.geometry));
        return frame;
    }

    /// Energy of the difference of two spectra over that of the first, dB.
    [[nodiscard]] double difference(const CutFrame& one, const CutFrame& other) const
    {
        const ChannelSpectra& a = one.spectra();
        const ChannelSpectra& b = other.spectra();
        double sum = 0;
        double whole = 1e-20;
        for (int k = 0; k < design_.binCount; ++k) {
            const std::ptrdiff_t bin = k;
            sum += std::pow(a.real(0)[bin] - b.real(0)[bin], 2)
                   + std::pow(a.imaginary(0)[bin] - b.imaginary(0)[bin], 2);
            whole += std::pow(a.real(0)[bin], 2) + std::pow(a.imaginary(0)[bin], 2);
        }
        return 10 * std::log10(sum / whole + 1e-20);
    }

    Geometry geometry_;
    LayerDesign design_;
    Frames reference_ = 10240;
};

TEST_P(CutFrameTest, HoldsNothingOfWhatFollowsTheCut)
{
    constexpr Frames onset = 10900;
    const test::Channel before = test::noise(0.3, 13312, 1, 7)[0];
    test::Channel with = before;
    const test::Channel hit = test::noise(1, 13312, 1, 8)[0];
    std::copy(hit.begin() + onset, hit.end(), with.begin() + onset);
    // What is left is what the decimators' filters carry over the cut.
    EXPECT_LT(difference(analysed(before, onset), analysed(with, onset)), -50);
    EXPECT_GT(difference(analysed(before, 13000), analysed(with, 13000)), -20);
}

TEST_P(CutFrameTest, CutBehindTheWindowChangesNothingAndCutBeforeItLeavesNothing)
{
    const test::Channel signal = test::noise(0.3, 13312, 1, 9)[0];
    const LayerGeometry& layer = design_.geometry;
    const CutFrame whole = analysed(signal, reference_ + 2 * layer.release);
    EXPECT_LT(difference(whole, analysed(signal, reference_ + layer.release + 70)), -60);
    const CutFrame nothing = analysed(signal, reference_ - layer.attack - 10);
    for (int k = 0; k < design_.binCount; ++k) {
        ASSERT_EQ(nothing.spectra().real(0)[k], 0);
    }
}

TEST_P(CutFrameTest, FadesOutWithinAMillisecondAndAHalfBeforeTheCut)
{
    const LayerGeometry& layer = design_.geometry;
    const double fade = 0.0015 * rate / layer.decimation;
    const Frames start = reference_ - layer.attack;
    const int frames = 13312 / layer.decimation;
    for (const Frames end : {reference_, reference_ + 1, reference_ + 3}) {
        const double cut = static_cast<double>(end - start) / layer.decimation;
        for (int n = static_cast<int>(cut - fade) - 2; n < static_cast<int>(cut) + 3; ++n) {
            // The spectrum of a single sample is as strong on every bin as the window there.
            InputHistory input(1, frames, frames);
            input.tail(0)[start / layer.decimation + n] = 1;
            input.commit(frames);
            CutFrame frame(design_, 1);
            frame.analyse(reference_ / layer.hop, end, input);
            const double wanted =
                static_cast<double>(design_.windows.analysis()[n]) * raisedCosine((cut - n) / fade);
            EXPECT_NEAR(std::hypot(frame.spectra().real(0)[5], frame.spectra().imaginary(0)[5]),
                        wanted, 1e-5 * layer.decimation)
                << "sample " << n << ", cut at " << cut;
        }
    }
}

TEST_P(CutFrameTest, IsMadeAnewForAnotherFrameOrCutAndAfterAReset)
{
    const int frames = 13312 / design_.geometry.decimation;
    const auto history = [frames](std::uint32_t seed) {
        InputHistory input(1, frames, frames);
        const test::Channel samples =
            test::noise(0.5, static_cast<std::size_t>(frames), 1, seed)[0];
        std::copy(samples.begin(), samples.end(), input.tail(0));
        input.commit(frames);
        return input;
    };
    const InputHistory one = history(1);
    const InputHistory other = history(2);
    const std::int64_t number = reference_ / design_.geometry.hop;
    CutFrame fresh(design_, 1);
    CutFrame used(design_, 1);
    const auto isFresh = [&] { return difference(used, fresh) < -150; };
    used.analyse(number, reference_, one);
    fresh.analyse(number, reference_ + 100, other);
    used.analyse(number, reference_ + 100, other);
    EXPECT_TRUE(isFresh()) << "another cut";
    fresh.analyse(number - 1, reference_ + 100, one);
    used.analyse(number - 1, reference_ + 100, one);
    EXPECT_TRUE(isFresh()) << "another frame";
    used.analyse(number - 1, reference_ + 100, other);
    EXPECT_TRUE(isFresh()) << "it was done already";
    used.reset();
    used.analyse(number - 1, reference_ + 100, other);
    EXPECT_FALSE(isFresh()) << "nothing is known any more";
}

INSTANTIATE_TEST_SUITE_P(Layers, CutFrameTest, testing::Values(0, 1, 2));

}  // namespace
}  // namespace tonvale::timepitch
