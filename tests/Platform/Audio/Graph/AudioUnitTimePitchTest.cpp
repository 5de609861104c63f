// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/AudioUnitTimePitch.h"

#include "Support/SignalNode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>
#include <span>
#include <vector>

namespace tonvale {
namespace {

using test::renderAll;
using test::Signal;
using test::SignalNode;

Signal shift(const Signal& signal, float cents, const AudioFormat& format,
             std::uint32_t blockFrames = 4096, bool isOffline = false)
{
    SignalNode source(signal);
    AudioUnitTimePitch unit;
    unit.setInput(&source);
    unit.setPitch(cents);
    unit.setRate(1.0F);
    unit.prepare({format, blockFrames, isOffline});
    return renderAll(unit, format, signal.size(), blockFrames);
}

Signal sine(std::size_t frames, double frequency, double sampleRate)
{
    Signal signal(frames);
    for (std::size_t frame = 0; frame < frames; ++frame) {
        const double time = static_cast<double>(frame) / sampleRate;
        signal[frame] = static_cast<float>(0.5 * std::sin(2 * std::numbers::pi * frequency * time));
    }
    return signal;
}

/// Frequency by the time between the first and the last rising zero crossing.
double frequencyOf(std::span<const float> signal, double sampleRate)
{
    std::vector<double> crossings;
    for (std::size_t frame = 1; frame < signal.size(); ++frame) {
        const double before = signal[frame - 1];
        const double after = signal[frame];
        if (before < 0 && after >= 0) {
            crossings.push_back(static_cast<double>(frame) - after / (after - before));
        }
    }
    return static_cast<double>(crossings.size() - 1) * sampleRate
           / (crossings.back() - crossings.front());
}

class EveryShift : public ::testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(TimePitch, EveryShift, ::testing::Range(-6, 7));

TEST_P(EveryShift, MovesTheFrequencyByItsRatioAndNothingElse)
{
    constexpr double sampleRate = 44100;
    const float cents = static_cast<float>(GetParam() * 100);
    const Signal shifted = shift(sine(44100, 440, sampleRate), cents, {sampleRate, 1});
    const auto steady = std::span(shifted).subspan(11025, 22050);
    const double expected = 440 * std::exp2(cents / 1200.0);
    // What interpolated zero crossings over half a second can tell.
    EXPECT_NEAR(1200 * std::log2(frequencyOf(steady, sampleRate) / expected), 0, 0.5);
}

TEST_P(EveryShift, LeavesClicksWhereTheyWere)
{
    for (const double sampleRate : {8000.0, 44100.0, 48000.0, 96000.0}) {
        Signal clicks(30000);
        const std::vector<std::size_t> places{0, 15000, clicks.size() - 1};
        for (const std::size_t place : places) {
            clicks[place] = 0.9F;
        }
        const Signal shifted = shift(clicks, static_cast<float>(GetParam() * 100), {sampleRate, 1});
        ASSERT_EQ(shifted.size(), clicks.size());
        for (const std::size_t place : places) {
            const std::size_t first = place < 5000 ? 0 : place - 5000;
            const std::size_t last = std::min(clicks.size(), place + 5000);
            const auto loudest =
                std::ranges::max_element(shifted.begin() + static_cast<std::ptrdiff_t>(first),
                                         shifted.begin() + static_cast<std::ptrdiff_t>(last), {},
                                         [](float sample) { return std::abs(sample); });
            EXPECT_NEAR(static_cast<double>(loudest - shifted.begin()), static_cast<double>(place),
                        5)
                << sampleRate;
        }
    }
}

TEST(TimePitch, DoesNotDependOnTheBlocksItIsAskedFor)
{
    const Signal signal = sine(20000, 300, 44100);
    const AudioFormat mono{44100, 1};
    const Signal expected = shift(signal, 300, mono);
    for (const std::uint32_t blockFrames : {1U, 100U, 513U}) {
        EXPECT_EQ(shift(signal, 300, mono, blockFrames), expected) << blockFrames;
    }
}

TEST(TimePitch, SoundsTheSameLiveAndOffline)
{
    const AudioFormat mono{44100, 1};
    const Signal signal = sine(100000, 300, 44100);
    EXPECT_EQ(shift(signal, 300, mono, 512, true), shift(signal, 300, mono, 512, false));
    EXPECT_EQ(shift(signal, -600, mono, 4096, true), shift(signal, -600, mono, 100, false));
}

TEST(TimePitch, GivesAnUnshiftedSongBackSampleForSample)
{
    const Signal signal = sine(50000, 300, 44100);
    EXPECT_EQ(shift(signal, 0, {44100, 1}, 512, false), signal);
    EXPECT_EQ(shift(signal, 0, {44100, 1}, 4096, true), signal);
}

TEST(TimePitch, StaysSilentInSilence)
{
    const Signal silence(20000);
    EXPECT_EQ(shift(silence, -400, {44100, 2}), silence);
}

TEST(TimePitch, KeepsUpWithItsLatencyAtEveryRateAndPitch)
{
    for (const double sampleRate : {8000.0, 22050.0, 44100.0, 96000.0, 192000.0}) {
        for (const float cents : {-1200.0F, -600.0F, 0.0F, 600.0F, 1200.0F}) {
            const Signal signal = sine(static_cast<std::size_t>(sampleRate / 4), 440, sampleRate);
            const Signal shifted = shift(signal, cents, {sampleRate, 1});
            EXPECT_EQ(shifted.size(), signal.size());
            EXPECT_GT(*std::ranges::max_element(shifted), 0.3F) << sampleRate << " " << cents;
        }
    }
}

TEST(TimePitch, TakesANewPitchWhileItRuns)
{
    constexpr double sampleRate = 44100;
    const AudioFormat mono{sampleRate, 1};
    SignalNode source(sine(66150, 440, sampleRate));
    AudioUnitTimePitch unit;
    unit.setInput(&source);
    unit.prepare({mono, 512, false});
    (void)renderAll(unit, mono, 22050, 512);
    unit.setPitch(400);
    const Signal after = renderAll(unit, mono, 44100, 512);
    EXPECT_NEAR(frequencyOf(std::span(after).subspan(22050, 16000), sampleRate),
                440 * std::exp2(4.0 / 12), 0.5);
}

TEST(TimePitch, ReadsAheadByItsLatencyAndNoMore)
{
    const AudioFormat mono{44100, 1};
    SignalNode source(Signal(50000));
    AudioUnitTimePitch unit;
    unit.setInput(&source);
    unit.prepare({mono, 512, false});
    (void)renderAll(unit, mono, 512, 512);
    EXPECT_EQ(source.framesTaken(), 512 + unit.latencyFrames());
}

TEST(TimePitchDeathTest, KnowsNoRateButOne)
{
    AudioUnitTimePitch unit;
    EXPECT_EXIT(unit.setRate(1.5F), ::testing::KilledBySignal(SIGABRT), "");
}

}  // namespace
}  // namespace tonvale
