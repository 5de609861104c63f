// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Graph/DeviceConverter.h"

#include "Support/Songs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace tonvale {
namespace {

using test::Channels;
using Samples = std::vector<float>;
constexpr std::uint32_t blockFrames = 132;  // what is rendered at once at 44.1 kHz

void append(Samples& samples, std::span<const float> more)
{
    samples.insert(samples.end(), more.begin(), more.end());
}

Samples convertWith(DeviceConverter& converter, const AudioFormat& format, const Channels& song)
{
    const auto buffer = AudioPCMBuffer::create(format, blockFrames);
    const std::size_t length = song[0].size();
    Samples result;
    for (std::size_t start = 0; start < length; start += blockFrames) {
        const std::size_t count = std::min<std::size_t>(blockFrames, length - start);
        for (std::uint32_t channel = 0; channel < song.size(); ++channel) {
            std::ranges::copy(std::span(song[channel]).subspan(start, count),
                              buffer->channel(channel).begin());
        }
        buffer->setFrameLength(static_cast<std::uint32_t>(count));
        const auto converted = converter.convert(*buffer);
        EXPECT_LE(converted.size(), 2 * std::size_t{converter.maximumOutput()});
        append(result, converted);
    }
    const auto rest = converter.finish();
    EXPECT_LE(rest.size(), 2 * std::size_t{converter.maximumOutput()});
    append(result, rest);
    return result;
}

Samples convert(const AudioFormat& format, double deviceRate, const Channels& song)
{
    DeviceConverter converter(format, deviceRate, blockFrames);
    return convertWith(converter, format, song);
}

Samples side(const Samples& interleaved, std::size_t which)
{
    Samples samples;
    for (std::size_t place = which; place < interleaved.size(); place += 2) {
        samples.push_back(interleaved[place]);
    }
    return samples;
}

Channels noise(std::size_t channelCount, std::size_t frames)
{
    const unsigned seed = 20261121;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> level(-1.0F, 1.0F);
    Channels channels(channelCount, Samples(frames));
    for (Samples& samples : channels) {
        std::ranges::generate(samples, [&] { return level(random); });
    }
    return channels;
}

/// RMS level of the middle half.
double levelOf(const Samples& samples)
{
    double sum = 0;
    for (std::size_t place = samples.size() / 4; place < samples.size() * 3 / 4; ++place) {
        sum += double{samples[place]} * double{samples[place]};
    }
    return std::sqrt(sum / (static_cast<double>(samples.size()) / 2));
}

double decibels(double ratio)
{
    return 20 * std::log10(ratio);
}

TEST(DeviceConverter, GivesStereoAtTheDevicesRateBackSampleForSample)
{
    const Channels song = noise(2, 1000);
    const Samples result = convert({48000, 2}, 48000, song);
    EXPECT_EQ(side(result, 0), song[0]);
    EXPECT_EQ(side(result, 1), song[1]);
}

TEST(DeviceConverter, PutsOneChannelOnBothSidesAtItsLevel)
{
    const Channels song = noise(1, 1000);
    const Samples result = convert({48000, 1}, 48000, song);
    EXPECT_EQ(side(result, 0), song[0]);
    EXPECT_EQ(side(result, 1), song[0]);
}

struct RatePair {
    double source;
    double device;
};

void PrintTo(const RatePair& rates, std::ostream* stream)
{
    *stream << rates.source << " to " << rates.device;
}

class EveryRate : public ::testing::TestWithParam<RatePair> {};
INSTANTIATE_TEST_SUITE_P(DeviceConverter, EveryRate,
                         ::testing::Values(RatePair{44100, 48000}, RatePair{48000, 44100},
                                           RatePair{8000, 48000}, RatePair{11025, 192000},
                                           RatePair{96000, 48000}, RatePair{192000, 44100},
                                           RatePair{37801, 48000}));

TEST_P(EveryRate, MovesNothing)
{
    const auto [source, device] = GetParam();
    const auto frames = static_cast<std::size_t>(source);
    Channels clicks(2, Samples(frames));
    const std::vector<double> seconds{0.0, 0.25, 0.75};
    for (const double second : seconds) {
        clicks[0][static_cast<std::size_t>(second * source)] = 0.9F;
    }
    const Samples result = side(convert({source, 2}, device, clicks), 0);
    for (const double second : seconds) {
        const auto from =
            result.begin() + static_cast<std::ptrdiff_t>(std::max(0.0, (second - 0.1) * device));
        const auto to = result.begin() + static_cast<std::ptrdiff_t>((second + 0.1) * device);
        const auto loudest = std::max_element(from, to);
        const auto ideal = std::floor(second * source) / source * device;
        EXPECT_NEAR(static_cast<double>(loudest - result.begin()), ideal, 1);
    }
}

TEST_P(EveryRate, KeepsTheLengthToTheFrame)
{
    const auto [source, device] = GetParam();
    for (const std::size_t frames : {1U, 131U, 132U, 133U, 1000U, 30000U}) {
        const Samples result = convert({source, 2}, device, Channels(2, Samples(frames, 0.5F)));
        EXPECT_EQ(static_cast<double>(result.size()) / 2,
                  std::ceil(static_cast<double>(frames) / source * device));
    }
}

TEST_P(EveryRate, KeepsPitchAndLevel)
{
    const auto [source, device] = GetParam();
    const auto frames = static_cast<std::size_t>(source / 2);
    // Up to 0.85 of the lower Nyquist frequency; above, the filter may bend.
    const double highest = 0.85 * std::min(source, device) / 2;
    for (const double frequency : {100.0, 440.0, highest}) {
        const Channels song = test::tones({frequency, frequency}, source, frames);
        const Samples result = side(convert({source, 2}, device, song), 0);
        EXPECT_NEAR(decibels(levelOf(result) / levelOf(song[0])), 0, 0.05) << frequency;
        if (frequency < 1000) {
            EXPECT_NEAR(test::centsBetween(frequency, test::frequencyOf(result, device)), 0, 0.1);
        }
    }
}

TEST(DeviceConverter, BringsNothingBackThatTheDeviceCannotSound)
{
    const Channels song = test::tones({30000, 30000}, 96000, 96000);
    const Samples result = side(convert({96000, 2}, 48000, song), 0);
    EXPECT_LT(decibels(levelOf(result) / levelOf(song[0])), -80);
}

TEST(DeviceConverter, StartsAfreshWhenReset)
{
    const AudioFormat stereo{44100, 2};
    const Channels song = noise(2, 3000);
    DeviceConverter converter(stereo, 48000, blockFrames);
    const Samples first = convertWith(converter, stereo, song);
    converter.reset();
    (void)convertWith(converter, stereo, noise(2, 700));
    converter.reset();
    EXPECT_EQ(convertWith(converter, stereo, song), first);
}

TEST(DeviceConverter, HearsSilenceBeforeTheFirstFrame)
{
    // Two steps up out of silence: one that begins the stream, one that has silence before it.
    Channels late(2, Samples(2000, 0.5F));
    std::fill_n(late[0].begin(), 441, 0.0F);
    const Samples expected = side(convert({44100, 2}, 48000, late), 0);
    const Samples result = side(convert({44100, 2}, 48000, Channels(2, Samples(1559, 0.5F))), 0);
    EXPECT_NEAR(expected[470], 0, 0.01);  // the step is no wider than that
    for (std::size_t frame = 0; frame < 1000; ++frame) {
        ASSERT_NEAR(result[frame], expected[480 + frame], 1e-6F) << frame;
    }
}

}  // namespace
}  // namespace tonvale
