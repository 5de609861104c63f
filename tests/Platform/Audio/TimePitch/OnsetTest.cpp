// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Audio/TimePitch/OctaveInput.h"
#include "Platform/Audio/TimePitch/OnsetDetector.h"
#include "TestSignals.h"

namespace tonvale::timepitch {
namespace {

std::vector<Onset> detect(const test::Signal& signal, double sampleRate)
{
    const Geometry geometry = makeGeometry(sampleRate);
    const auto channelCount = static_cast<unsigned>(signal.size());
    OnsetDetector detector(geometry, channelCount);
    OctaveInput input(geometry, channelCount,
                      OnsetDetector::framesNeeded(geometry) + geometry.block);
    const auto block = static_cast<std::size_t>(geometry.block);
    for (std::size_t done = 0; done + block <= signal.front().size(); done += block) {
        std::vector<const float*> channels;
        for (const test::Channel& channel : signal) {
            channels.push_back(channel.data() + done);
        }
        input.advance(channels.data());
        detector.advance(input.whole());
    }
    return {detector.onsets().begin(), detector.onsets().end()};
}

/// A decaying burst of noise at `position`.
void addHit(test::Channel& channel, std::size_t position, double sampleRate, unsigned seed)
{
    std::mt19937 generator(seed);
    std::uniform_real_distribution<double> value(-0.5, 0.5);
    for (std::size_t i = 0; i < static_cast<std::size_t>(0.05 * sampleRate); ++i) {
        const double decay = std::exp(-static_cast<double>(i) / (0.008 * sampleRate));
        channel[position + i] += static_cast<float>(decay * value(generator));
    }
}

TEST(OnsetDetectorTest, HitsAreFoundWithinFiveFramesAtEveryRate)
{
    for (const double rate : {8000.0, 22050.0, 44100.0, 48000.0, 96000.0, 192000.0}) {
        test::Signal signal = test::silence(static_cast<std::size_t>(rate));
        std::vector<Frames> places;
        for (const double time : {0.2, 0.3171, 0.5, 0.7777}) {
            const auto place = static_cast<std::size_t>(time * rate);
            addHit(signal[0], place, rate, 5);
            places.push_back(static_cast<Frames>(place));
        }
        const std::vector<Onset> onsets = detect(signal, rate);
        ASSERT_EQ(onsets.size(), places.size()) << rate;
        for (std::size_t index = 0; index < places.size(); ++index) {
            EXPECT_NEAR(static_cast<double>(onsets[index].position),
                        static_cast<double>(places[index]), 5)
                << rate;
        }
    }
}

TEST(OnsetDetectorTest, FirstSoundOfAStreamIsAnOnsetAndASteadyToneHasNoOther)
{
    test::Signal signal = test::tones({{880, 0.5, 0}, {3000, 0.2, 0}}, 44100, 88200);
    const std::vector<Onset> onsets = detect(signal, 44100);
    ASSERT_EQ(onsets.size(), 1U);
    EXPECT_LT(onsets[0].position, 1000) << "within the fade of 20 ms";
}

TEST(OnsetDetectorTest, HitIsNotInLayersWhoseBandDoesNotRise)
{
    test::Signal signal = test::tones({{220, 0.6, 0}}, 44100, 44100);
    for (int i = 0; i < 200; ++i) {  // a high tick over a low tone
        signal[0][static_cast<std::size_t>(22050 + i)] +=
            static_cast<float>(0.3 * std::sin(1.2 * i) * std::exp(-i / 40.0));
    }
    const std::vector<Onset> onsets = detect(signal, 44100);
    ASSERT_GE(onsets.size(), 1U);
    const Onset& last = onsets.back();
    EXPECT_NEAR(static_cast<double>(last.position), 22050, 5);
    EXPECT_FALSE(last.isIn(0));
    EXPECT_TRUE(last.isIn(2));
}

TEST(OnsetDetectorTest, CloseHitsCountAsOne)
{
    test::Signal signal = test::silence(44100);
    addHit(signal[0], 20000, 44100, 1);
    addHit(signal[0], 20300, 44100, 2);  // 7 ms later
    EXPECT_EQ(detect(signal, 44100).size(), 1U);
}

TEST(OnsetDetectorTest, VoiceThatBeginsIsOneOnset)
{
    // Pulses at 115 Hz that grow by 4 dB each, 40 dB in all, and then stay.
    test::Signal signal = test::silence(44100);
    double loudness = -40;
    for (std::size_t pulse = 10000; pulse + 384 < signal[0].size(); pulse += 384) {
        for (std::size_t i = 0; i < 384; ++i) {
            const auto t = static_cast<double>(i) / 44100;
            signal[0][pulse + i] =
                static_cast<float>(0.5 * std::pow(10.0, loudness / 20) * std::exp(-t / 0.002)
                                   * std::sin(2 * std::numbers::pi * 2100 * t));
        }
        loudness = std::min(0.0, loudness + 4);
    }
    const std::vector<Onset> onsets = detect(signal, 44100);
    ASSERT_EQ(onsets.size(), 1U);
    EXPECT_NEAR(static_cast<double>(onsets[0].position), 10000, 5);
}

TEST(OnsetDetectorTest, HitsThatFollowSoonAreFound)
{
    test::Signal signal = test::silence(44100);
    for (unsigned hit = 0; hit < 10; ++hit) {
        addHit(signal[0], 20000 + 1323 * std::size_t{hit}, 44100, 5);  // 30 ms
    }
    EXPECT_EQ(detect(signal, 44100).size(), 10U);
}

TEST(OnsetDetectorTest, EnvelopeIsTheLargestBlockInRange)
{
    const Geometry geometry = makeGeometry(44100);
    OnsetDetector detector(geometry, 1);
    OctaveInput input(geometry, 1, OnsetDetector::framesNeeded(geometry) + geometry.block);
    test::Signal signal = test::silence(4096);
    addHit(signal[0], 1024, 44100, 3);
    for (int done = 0; done < 4096; done += geometry.block) {
        const float* channel = signal[0].data() + done;
        input.advance(&channel);
        detector.advance(input.whole());
    }
    EXPECT_EQ(detector.largestPower(2, 0, 900), 0);
    EXPECT_GT(detector.largestPower(2, 0, 1100), 1e-3F);
    EXPECT_GT(detector.largestPower(2, 1000, 1100), detector.largestPower(2, 2000, 2100));
}

TEST(OnsetListTest, ContextIsTheLastOnsetBeforeAndTheFirstAfterAFrame)
{
    const LayerGeometry layer = makeGeometry(44100).layers[1];  // release 2048, hop 1024
    OnsetList list;
    list.add({.position = 10000, .layers = 7, .number = 0, .remainder = {}});
    list.add({.position = 13000, .layers = 7, .number = 1, .remainder = {}});
    list.add({.position = 13100, .layers = 1, .number = 2, .remainder = {}});
    EXPECT_TRUE(list.around(layer, 5000).isPlain());
    EXPECT_EQ(list.around(layer, 9000).next->number, 0);
    EXPECT_EQ(list.around(layer, 9000).current, nullptr);
    EXPECT_EQ(list.around(layer, 9600).current->number, 0) << "from half a hop before on";
    EXPECT_EQ(list.around(layer, 11500).current->number, 0);
    EXPECT_EQ(list.around(layer, 11500).next->number, 1);
    EXPECT_EQ(list.around(layer, 13200).current->number, 1) << "the third is not in this layer";
    EXPECT_TRUE(list.around(layer, 15048).isPlain());
}

TEST(OnsetListTest, CloseOnsetsAreBothSeen)
{
    const LayerGeometry layer = makeGeometry(44100).layers[1];
    OnsetList list;
    list.add({.position = 10000, .layers = 7, .number = 0, .remainder = {}});
    list.add({.position = 11600, .layers = 7, .number = 1, .remainder = {}});
    EXPECT_EQ(list.around(layer, 10500).current->number, 0);
    EXPECT_EQ(list.around(layer, 10500).next->number, 1);
}

TEST(OnsetListTest, ForgetsTheOldestWhenFullAndWhatLiesBefore)
{
    OnsetList list;
    for (std::int64_t number = 0; number < 40; ++number) {
        list.add({.position = number * 700, .layers = 7, .number = number, .remainder = {}});
    }
    EXPECT_EQ(list.begin()->number, 8);
    EXPECT_EQ(list.last()->number, 39);
    list.forgetBefore(30 * 700);
    EXPECT_EQ(list.begin()->number, 30);
    EXPECT_TRUE(list.isNear(39 * 700 + 10, 20, 1));
    EXPECT_FALSE(list.isNear(39 * 700 + 30, 20, 1));
    EXPECT_FALSE(list.isNear(39 * 700, 20, 8));
}

}  // namespace
}  // namespace tonvale::timepitch
