// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "GuardedMemory.h"
#include "TestSignals.h"

namespace tonvale::timepitch {
namespace {

using test::Signal;

struct Change {
    float from;  ///< cents
    float to;
};

void PrintTo(const Change& change, std::ostream* stream)
{
    *stream << change.from << " to " << change.to << " cents";
}

/// A tone of 440 Hz with one change of pitch.
struct Changed {
    test::Channel out;
    std::size_t at;  ///< frame of the output (latency removed) where the stream stood then
};

Changed changeOnce(const Change& change, double rate, std::size_t streamPosition)
{
    PitchShifter shifter({.sampleRate = rate, .channelCount = 1, .workerThreads = 0});
    shifter.setPitch(change.from);
    const auto latency = static_cast<std::size_t>(shifter.latencyFrames());
    std::size_t at = 0;
    const Signal in = test::tones({{440, 0.5, 1}}, rate, static_cast<std::size_t>(1.5 * rate));
    Signal out = test::render(shifter, in, static_cast<unsigned>(rate / 500),
                              [&](PitchShifter& s, std::size_t frame) {
                                  if (at == 0 && frame >= streamPosition) {
                                      s.setPitch(change.to);
                                      at = frame - latency;
                                  }
                              });
    return {std::move(out[0]), at};
}

class LiveChangeTest : public testing::TestWithParam<Change> {};

TEST_P(LiveChangeTest, NewPitchIsHeardWithin80Milliseconds)
{
    for (const double rate : {8000.0, 32000.0, 44100.0, 192000.0}) {
        for (const double second : {0.6, 0.613, 0.631}) {  // anywhere in the grid of frames
            const Changed changed =
                changeOnce(GetParam(), rate, static_cast<std::size_t>(second * rate));
            const auto from = changed.at + static_cast<std::size_t>(0.080 * rate);
            const auto to = from + static_cast<std::size_t>(0.030 * rate);
            const double ideal = 440 * std::exp2(static_cast<double>(GetParam().to) / 1200);
            EXPECT_GT(test::toneToRest(changed.out, from, to, rate, {ideal}), 25) << rate;
        }
    }
}

/// The largest component above `lowest` Hz in any short stretch, dB against the tone: a smooth
/// change has none, a click is broadband.
double largestClick(const test::Channel& out, std::size_t from, std::size_t to, double rate,
                    double lowest)
{
    constexpr std::size_t size = 512;
    double worst = 0;
    for (std::size_t start = from; start + size < to; start += size / 4) {
        for (double frequency = lowest; frequency < 0.45 * rate; frequency += 2 * rate / size) {
            double real = 0;
            double imaginary = 0;
            for (std::size_t i = 0; i < size; ++i) {
                const double x = 6.283185307179586 * static_cast<double>(i) / size;
                const double window =
                    0.35875 - 0.48829 * std::cos(x) + 0.14128 * std::cos(2 * x)
                    - 0.01168 * std::cos(3 * x);  // Blackman-Harris: side lobes at -92 dB
                const double sample = window * static_cast<double>(out[start + i]);
                const double angle = 6.283185307179586 * frequency * static_cast<double>(i) / rate;
                real += sample * std::cos(angle);
                imaginary += sample * std::sin(angle);
            }
            worst = std::max(worst, 2 * std::hypot(real, imaginary) / (0.35875 * size));
        }
    }
    return test::decibels(worst / 0.5);
}

TEST_P(LiveChangeTest, MakesNoClick)
{
    const Changed changed = changeOnce(GetParam(), 44100, 27000);
    const double click = largestClick(changed.out, changed.at, changed.at + 8000, 44100, 3000);
    EXPECT_LT(click, -88.5);
}

TEST_P(LiveChangeTest, KeepsTheLevel)
{
    const Changed changed = changeOnce(GetParam(), 44100, 27000);
    for (std::size_t i = changed.at; i < changed.at + 8000; i += 100) {
        const double level = test::rms(changed.out, i, i + 441) * std::sqrt(2.0) / 0.5;
        // 10 ms are not whole periods: 0.15 dB of the 0.75 belong to the measurement.
        EXPECT_NEAR(test::decibels(level), 0, 0.75) << i - changed.at;
    }
}

INSTANTIATE_TEST_SUITE_P(All, LiveChangeTest,
                         testing::Values(Change{0, 300}, Change{300, 0}, Change{0, -50},
                                         Change{-600, 600}, Change{400, 500}, Change{-5, 0},
                                         Change{1200, -1200}));

TEST(LiveDraggingTest, ManySmallChangesKeepTheLevel)
{
    PitchShifter shifter({.sampleRate = 44100, .channelCount = 1, .workerThreads = 0});
    const Signal in = test::tones({{440, 0.5, 1}}, 44100, 88200);
    const Signal out = test::render(shifter, in, 128, [](PitchShifter& s, std::size_t frame) {
        const double second = static_cast<double>(frame) / 44100;
        s.setPitch(static_cast<float>(400 * std::sin(3 * second)));
    });
    for (std::size_t i = 10000; i < 80000; i += 200) {
        const double level = test::rms(out[0], i, i + 882) * std::sqrt(2.0) / 0.5;
        EXPECT_NEAR(test::decibels(level), 0, 0.6) << i;
    }
}

TEST(LiveProcessTest, ProcessingChangingAndResettingNeverAllocate)
{
    PitchShifter shifter({.sampleRate = 44100, .channelCount = 2, .workerThreads = 0});
    const Signal in = test::noise(0.5, 480, 2, 4);
    Signal out = in;
    const float* from[] = {in[0].data(), in[1].data()};
    float* to[] = {out[0].data(), out[1].data()};
    const test::AllocationCounter allocations;
    for (int call = 0; call < 400; ++call) {
        if (call % 7 == 0) {
            shifter.setPitch(static_cast<float>((call * 37) % 1200 - 600));
        }
        if (call == 200) {
            shifter.reset();
        }
        shifter.process(from, to, 480);
    }
    EXPECT_EQ(allocations.count(), 0);
}

TEST(PrimingTest, StartInTheMiddleSoundsAsTheSongDoesThere)
{
    constexpr double rate = 44100;
    const Signal in = test::tones({{220, 0.2, 0}, {554.4, 0.2, 1}, {1800, 0.1, 2}}, rate, 132300);
    for (const float cents : {-300.0F, 400.0F}) {
        const double ratio = std::exp2(static_cast<double>(cents) / 1200);
        PitchShifter shifter({.sampleRate = rate, .channelCount = 1, .workerThreads = 0});
        shifter.setPitch(cents);
        constexpr std::size_t start = 66150;
        const auto first = start - static_cast<std::size_t>(shifter.prerollFrames());
        const auto next = start + static_cast<std::size_t>(shifter.latencyFrames());
        const float* before[] = {in[0].data() + first};
        shifter.prime(before, static_cast<unsigned>(next - first));
        test::Channel out(4410);
        const float* from[] = {in[0].data() + next};
        float* to[] = {out.data()};
        shifter.process(from, to, 4410);
        EXPECT_GT(test::toneToRest(out, 0, 2205, rate, {220 * ratio, 554.4 * ratio, 1800 * ratio}),
                  30)
            << "the first 50 ms are as clean as any other";
    }
}

TEST(PrimingTest, StartInTheMiddleAtZeroCentsIsExact)
{
    const Signal in = test::noise(0.5, 50000, 1, 6);
    PitchShifter shifter({.sampleRate = 48000, .channelCount = 1, .workerThreads = 0});
    constexpr std::size_t start = 20000;
    const auto next = start + static_cast<std::size_t>(shifter.latencyFrames());
    const std::size_t first = start - static_cast<std::size_t>(shifter.prerollFrames());
    const float* before[] = {in[0].data() + first};
    shifter.prime(before, static_cast<unsigned>(next - first));
    test::Channel out(1000);
    const float* from[] = {in[0].data() + next};
    float* to[] = {out.data()};
    shifter.process(from, to, 1000);
    EXPECT_TRUE(std::equal(out.begin(), out.end(), in[0].begin() + start));
}

TEST(FuzzTest, AnyBlocksChannelsAndChangesStayFiniteAndIndependentOfBlocks)
{
    const unsigned seed = std::random_device{}();
    RecordProperty("seed", std::to_string(seed));
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 generator(seed);
    const auto below = [&](unsigned end) { return static_cast<unsigned>(generator() % end); };
    constexpr double rates[] = {8000, 22050, 32000, 44100, 48000, 96000};
    for (int round = 0; round < 12; ++round) {
        const double rate = rates[below(6)];
        const unsigned channels = 1 + below(4);
        const std::size_t frames = 4000 + below(16000);
        Signal in = test::noise(below(2) != 0 ? 1 : 1e-3, frames, channels, below(1000000));
        for (unsigned hits = below(6); hits > 0; --hits) {
            in[below(channels)][below(static_cast<unsigned>(frames))] = 4;
        }
        // Changes at fixed frames; both renders visit all of them as block borders.
        std::vector<std::pair<std::size_t, float>> changes;
        for (unsigned count = below(8); count > 0; --count) {
            const float cents = static_cast<float>(below(5)) * 500 - 1000;
            changes.emplace_back(below(static_cast<unsigned>(frames)) / 64 * 64, cents);
        }
        const auto change = [&](PitchShifter& shifter, std::size_t frame) {
            for (const auto& [position, cents] : changes) {
                if (position == frame) {
                    shifter.setPitch(cents);
                }
            }
        };
        PitchShifter one({.sampleRate = rate, .channelCount = channels, .workerThreads = 0});
        PitchShifter two({.sampleRate = rate, .channelCount = channels, .workerThreads = below(2)});
        const Signal a = test::render(one, in, 64, change);
        const Signal b = test::render(two, in, 1U << below(7), change);
        ASSERT_TRUE(test::allFinite(a));
        ASSERT_EQ(a, b);
        ASSERT_LT(test::largest(a[0]), 40);
    }
}

}  // namespace
}  // namespace tonvale::timepitch
