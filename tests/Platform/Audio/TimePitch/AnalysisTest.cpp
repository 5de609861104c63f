// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <cmath>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/AnalysisStage.h"
#include "TestSignals.h"

namespace tonvale::timepitch {
namespace {

constexpr double rate = 44100;

/// The analysis of the first 0.7 s of a signal (before any fade at its end).
class Analysed {
public:
    explicit Analysed(const test::Signal& signal) : geometry(makeGeometry(rate))
    {
        for (const LayerGeometry& layer : geometry.layers) {
            designs.emplace_back(layer);
        }
        stage.emplace(geometry, designs, static_cast<unsigned>(signal.size()));
        const auto block = static_cast<std::size_t>(geometry.block);
        for (std::size_t done = 0; done + block <= 30000; done += block) {
            std::vector<const float*> channels;
            for (const test::Channel& channel : signal) {
                channels.push_back(channel.data() + done);
            }
            stage->begin(channels.data());
            stage->finish();
            frames += geometry.block;
        }
    }

    /// The newest frame of a layer whose successor is known.
    [[nodiscard]] const SpectrumFrame& newest(std::size_t layer) const
    {
        const LayerGeometry& g = geometry.layers[layer];
        return stage->frames(layer).at(floorDivide(frames - g.release, g.hop) - 1);
    }
    /// The peak nearest to a frequency.
    [[nodiscard]] SpectralPeak peakAt(std::size_t layer, double frequency) const
    {
        const LayerDesign& design = designs[layer];
        SpectralPeak best;
        double distance = 1e9;
        for (const SpectralPeak& peak : newest(layer).peaks) {
            const double f = (peak.bin + design.firstBin) * design.geometry.binWidth();
            if (std::abs(f - frequency) < distance) {
                distance = std::abs(f - frequency);
                best = peak;
            }
        }
        return best;
    }
    [[nodiscard]] double measuredFrequency(std::size_t layer, double frequency) const
    {
        const SpectralPeak peak = peakAt(layer, frequency);
        const double advance =
            0.5
            * (static_cast<double>(peak.advanceBefore) + static_cast<double>(peak.advanceAfter));
        return advance / geometry.layers[layer].hop * rate / twoPi;
    }

    Geometry geometry;
    std::vector<LayerDesign> designs;
    std::optional<AnalysisStage> stage;
    Frames frames = 0;
};

TEST(AnalysisTest, FrequenciesOfChordTonesAreMeasuredWithinThreeHundredthsOfACent)
{
    const std::vector<double> chord{220, 277.18, 329.63, 1567.98, 5274.04};
    std::vector<test::Partial> partials;
    for (const double frequency : chord) {
        partials.push_back({frequency, 0.1, frequency});
    }
    const Analysed analysed(test::tones(partials, rate, 44100));
    for (const double frequency : chord) {
        const std::size_t layer = frequency < 1000 ? 0 : frequency < 3500 ? 1 : 2;
        const double cents =
            1200 * std::log2(analysed.measuredFrequency(layer, frequency) / frequency);
        EXPECT_NEAR(cents, 0, 0.03) << frequency;  // side lobes of the neighbours
    }
}

TEST(AnalysisTest, PowerAtAPeakIsTheSquaredWindowSum)
{
    const Analysed analysed(test::tones({{440, 0.5, 0}}, rate, 44100, 2));
    double sum = 0;
    for (const float w : analysed.designs[0].windows.analysis()) {
        sum += static_cast<double>(w);
    }
    const SpectralPeak peak = analysed.peakAt(0, 440);
    const double expected = 2 * std::pow(0.5 * 0.5 * sum, 2);  // two channels
    const auto power = static_cast<double>(analysed.newest(0).power[peak.bin]);
    EXPECT_NEAR(10 * std::log10(power / expected), 0, 1.5);  // scalloping between bins
}

TEST(AnalysisTest, RegionsFollowEachOtherWithoutGaps)
{
    const Analysed analysed(test::noise(0.3, 44100, 2, 11));
    for (std::size_t layer = 0; layer < 3; ++layer) {
        int begin = 0;
        for (const SpectralPeak& peak : analysed.newest(layer).peaks) {
            EXPECT_GE(peak.bin, begin);
            EXPECT_LT(peak.bin, peak.regionEnd);
            begin = peak.regionEnd;
        }
        EXPECT_EQ(begin, analysed.designs[layer].binCount);
    }
}

TEST(AnalysisTest, AdvanceIsTheSameSeenFromBothFrames)
{
    const Analysed analysed(test::tones({{440, 0.5, 0}, {3000, 0.2, 1}}, rate, 44100));
    for (const double frequency : {440.0, 3000.0}) {
        const std::size_t layer = frequency < 1000 ? 0 : 1;
        const SpectralPeak peak = analysed.peakAt(layer, frequency);
        EXPECT_NEAR(peak.advanceBefore, peak.advanceAfter, 2e-3F);  // a steady tone
        EXPECT_NEAR(
            peak.advanceAfter,
            static_cast<float>(twoPi * frequency / rate * analysed.geometry.layers[layer].hop),
            2e-3F);
    }
}

TEST(AnalysisTest, SilenceHasNoPeaks)
{
    const Analysed analysed(test::silence(44100));
    for (std::size_t layer = 0; layer < 3; ++layer) {
        EXPECT_TRUE(analysed.newest(layer).peaks.empty());
    }
}

TEST(AnalysisTest, SkirtOfDcBelongsToNoPeak)
{
    test::Signal signal = test::tones({{440, 0.2, 0}}, rate, 44100);
    for (float& sample : signal[0]) {
        sample += 0.5F;
    }
    const Analysed withDc(signal);
    EXPECT_GT(withDc.newest(0).dcEnd, 0);
    EXPECT_LT(withDc.newest(0).dcEnd, withDc.newest(0).peaks.front().bin);
}

TEST(AnalysisTest, BassToneIsNotTakenForDc)
{
    const Analysed bass(test::tones({{60, 0.5, 0}}, rate, 44100));
    const SpectrumFrame& frame = bass.newest(0);
    const float tone = frame.power[bass.peakAt(0, 60).bin];
    for (int k = 0; k < frame.dcEnd; ++k) {
        EXPECT_LT(frame.power[k], 1e-5F * tone) << "at most its side lobes, 50 dB below";
    }
}

TEST(PeakTrackerTest, ClimbStopsAtMaximaAndRefusesLouderPartials)
{
    Array<float> power(20);
    power[5] = 1;
    power[6] = 3;
    power[7] = 9;
    power[8] = 2;
    EXPECT_EQ(PeakTracker::climb(power, 5, 8), 7);
    EXPECT_EQ(PeakTracker::climb(power, 8, 8), 7);
    EXPECT_EQ(PeakTracker::climb(power, 5, 0.1F), 5) << "the maximum is 12 dB louder";
    power[1] = 5;
    power[2] = 4;
    EXPECT_EQ(PeakTracker::climb(power, 2, 4), 2) << "the way leads out of the spectrum";
}

}  // namespace
}  // namespace tonvale::timepitch
