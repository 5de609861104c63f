// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/OnsetDetector.h"
#include "TestSignals.h"

namespace tonvale::timepitch {
namespace {

constexpr double rate = 44100;
constexpr int block = 64;  // the detector's, at this rate

/// A detector that has heard a signal.
class Hearing {
public:
    explicit Hearing(const test::Signal& signal)
        : detector(geometry, static_cast<unsigned>(signal.size()))
    {
        InputHistory input(static_cast<unsigned>(signal.size()),
                           OnsetDetector::framesNeeded(geometry) + block, block);
        for (std::size_t done = 0; done + block <= signal[0].size(); done += block) {
            for (unsigned channel = 0; channel < signal.size(); ++channel) {
                std::copy_n(signal[channel].begin() + static_cast<std::ptrdiff_t>(done), block,
                            input.tail(channel));
            }
            input.commit(block);
            detector.advance(input);
        }
    }
    [[nodiscard]] std::vector<Onset> onsets() const
    {
        return {detector.onsets().begin(), detector.onsets().end()};
    }

    Geometry geometry = makeGeometry(rate);
    OnsetDetector detector;
};

/// Tones of whole periods to a block, each with a power that changes from block to block.
struct Tone {
    int periods;
    std::function<double(int block)> power;
};

test::Signal blocks(int count, const std::vector<Tone>& tones)
{
    test::Signal signal = test::silence(static_cast<std::size_t>(count * block));
    for (std::size_t i = 0; i < signal[0].size(); ++i) {
        const int place = static_cast<int>(i);
        double sum = 0;
        for (const Tone& tone : tones) {
            sum += std::sqrt(2 * tone.power(place / block))
                   * std::sin(twoPi * tone.periods * place / block);
        }
        signal[0][i] = static_cast<float>(sum);
    }
    return signal;
}

std::function<double(int)> step(int place, double before, double after)
{
    return [=](int each) { return each < place ? before : after; };
}

TEST(OnsetDecisionTest, PowerHasToRiseToSixTimesTheMean)
{
    // The first sound is an onset, too.
    EXPECT_EQ(Hearing(blocks(200, {{8, step(100, 1e-3, 5.3e-3)}})).onsets().size(), 1U);
    EXPECT_EQ(Hearing(blocks(200, {{8, step(100, 1e-3, 6.7e-3)}})).onsets().size(), 2U);
}

/// A block of five times the power, which is no onset, and `distance` blocks later one of `ratio`
/// times as much again.
test::Signal twoPeaks(int distance, double ratio)
{
    return blocks(200,
                  {{8, [=](int each) {
                        return each == 100 ? 5e-3 : each == 100 + distance ? 5e-3 * ratio : 1e-3;
                    }}});
}

TEST(OnsetDecisionTest, PowerHasToRiseToTwiceTheMaximum)
{
    EXPECT_EQ(Hearing(twoPeaks(13, 1.7)).onsets().size(), 1U);
    EXPECT_EQ(Hearing(twoPeaks(13, 2.4)).onsets().size(), 2U);
}

TEST(OnsetDecisionTest, PastIsForgottenAfterSeventeenBlocks)
{
    EXPECT_EQ(Hearing(twoPeaks(17, 1.8)).onsets().size(), 1U);
    EXPECT_EQ(Hearing(twoPeaks(18, 1.8)).onsets().size(), 2U);
}

TEST(OnsetDecisionTest, BandJoinsACertainOneFromFourTimesItsMean)
{
    for (const double ratio : {3.4, 4.7}) {
        const Hearing hearing(
            blocks(200, {{9, step(100, 1e-4, 5e-3)}, {1, step(100, 1e-2, 1e-2 * ratio)}}));
        ASSERT_EQ(hearing.onsets().size(), 2U);
        EXPECT_EQ(hearing.onsets()[1].isIn(0), ratio > 4) << ratio;
        EXPECT_TRUE(hearing.onsets()[1].isIn(2));
    }
}

TEST(OnsetDecisionTest, BassAloneIsNoOnset)
{
    test::Signal signal = test::tones({{6000, 0.1, 0}}, rate, 44100);
    for (std::size_t i = 22050; i < signal[0].size(); ++i) {
        const double seconds = static_cast<double>(i - 22050) / rate;
        const double rise = std::min(1.0, seconds / 0.01);
        signal[0][i] += static_cast<float>(0.4 * rise * std::sin(twoPi * 150 * seconds));
    }
    EXPECT_EQ(Hearing(signal).onsets().size(), 1U) << "the first sound only";
}

TEST(OnsetDecisionTest, ClickIsFoundOnItsFrame)
{
    for (const std::size_t place : {5000U, 5001U, 5055U, 5056U, 5057U, 5119U}) {
        test::Signal signal = test::silence(8192);
        signal[0][place] = 0.5F;
        const Hearing hearing(signal);
        ASSERT_EQ(hearing.onsets().size(), 1U);
        EXPECT_EQ(hearing.onsets()[0].position, static_cast<Frames>(place));
    }
}

TEST(OnsetDecisionTest, HitInAnyChannelIsFound)
{
    for (unsigned channels = 1; channels <= 5; ++channels) {
        for (unsigned channel = 0; channel < channels; ++channel) {
            test::Signal signal = test::silence(8192, channels);
            signal[channel][5000] = 0.5F;
            EXPECT_EQ(Hearing(signal).onsets().size(), 1U) << channel << " of " << channels;
        }
    }
}

TEST(OnsetDecisionTest, SteadySoundIsAllLeftJustBeforeAHit)
{
    for (const double amplitude : {0.05, 0.003}) {
        test::Signal signal = test::noise(amplitude, 24000, 1, 31);
        const test::Signal hit = test::noise(0.8, 24000, 1, 32);
        std::copy(hit[0].begin() + 20000, hit[0].end(), signal[0].begin() + 20000);
        const Onset onset = Hearing(signal).onsets().back();
        EXPECT_NEAR(static_cast<double>(onset.position), 20000, 5);
        for (const float remainder : onset.remainder) {
            EXPECT_EQ(remainder, 1) << amplitude;
        }
    }
}

TEST(OnsetDecisionTest, RemainderIsTheLastMillisecondsOverWhatTheFrameBeforeHeard)
{
    // A tone that falls by `decay` (of power) per block until a hit, which begins with block 300.
    constexpr int hit = 300;
    for (const double decay : {0.9, 0.8}) {
        const auto power = [decay](int each) {
            return each < hit ? 0.1 * std::pow(decay, each - hit + 40) : 0.3;
        };
        const auto falling = [&power](int each) { return each < 200 ? power(200) : power(each); };
        const Onset onset = Hearing(blocks(330, {{17, falling}})).onsets().back();
        ASSERT_NEAR(static_cast<double>(onset.position), hit * block, 5);
        double recent = 0;  // 3 to 10 ms before
        for (int past = 2; past < 8; ++past) {
            recent += falling(hit - past) / 6;
        }
        constexpr int heard = 2048 / block;  // the windows of the top layer
        double weighted = 0;
        double weights = 0;
        for (int past = 2; past < heard; ++past) {
            const double weight = std::pow(std::sin(pi * past / heard), 4);
            weighted += weight * falling(hit - past);
            weights += weight;
        }
        EXPECT_NEAR(onset.remainder[2] / (2 * recent * weights / weighted), 1, 0.02) << decay;
    }
}

TEST(OnsetDecisionTest, EnvelopeIsTheSumOfTheChannelsPowers)
{
    const double frequencies[] = {300, 2000, 10000};
    for (int layer = 0; layer < 3; ++layer) {
        const test::Channel tone = test::tones({{frequencies[layer], 0.5, 0}}, rate, 16384)[0];
        const test::Channel none(16384);
        const auto envelope = [layer](const test::Signal& signal) {
            return Hearing(signal).detector.largestPower(layer, 8000, 8600);
        };
        const float once = envelope({tone});
        EXPECT_GT(once, 0.01F) << layer;
        EXPECT_LT(once, 0.2F) << layer;
        EXPECT_EQ(envelope({tone, none}), once) << layer;
        EXPECT_EQ(envelope({none, tone}), once) << layer;
        EXPECT_EQ(envelope({none, none, tone}), once) << layer;
        EXPECT_NEAR(envelope({tone, tone}), 2 * once, 1e-6F) << layer;
    }
}

TEST(OnsetDecisionTest, EnvelopeOfTheLowestLayerHoldsDcAsWell)
{
    test::Signal signal = test::silence(44032);
    std::ranges::fill(signal[0], 0.5F);
    const Hearing hearing(signal);
    EXPECT_NEAR(hearing.detector.largestPower(0, 40000, 40000), 0.25F, 1e-3F);
    EXPECT_NEAR(hearing.detector.largestPower(1, 40000, 40000), 0, 1e-6F);
}

TEST(OnsetDecisionTest, EnvelopeTakesTheBlocksOfBothEndsIn)
{
    test::Signal signal = test::silence(4096);
    signal[0][1030] = 0.5F;  // in block 16
    const Hearing hearing(signal);
    EXPECT_GT(hearing.detector.largestPower(2, 500, 1024), 1e-4F);
    EXPECT_GT(hearing.detector.largestPower(2, 1087, 1500), 1e-4F);
    EXPECT_EQ(hearing.detector.largestPower(2, 500, 1023), 0);
}

}  // namespace
}  // namespace tonvale::timepitch
