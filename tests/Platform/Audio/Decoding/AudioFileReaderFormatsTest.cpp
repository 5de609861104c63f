// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/AudioFileReader.h"
#include "Platform/Audio/Decoding/ReadAll.h"
#include "Platform/Foundation/LocalizedError.h"
#include "Support/MusicFixtures.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <iterator>
#include <random>
#include <vector>

namespace tonvale {

namespace {

using namespace test;

class EveryFormat : public testing::TestWithParam<MusicFormat> {
protected:
    /// The song's frames at the rate it is decoded at.
    static std::int64_t expectedLength()
    {
        const Recording& song = MusicFixtures::shared().song();
        return std::lround(static_cast<double>(song.length()) * GetParam().sampleRate
                           / song.sampleRate);
    }
};

/// The shift, in frames, at which a click of the song shows in what was decoded.
std::int64_t clickShift(const std::vector<float>& samples, std::int64_t expected)
{
    constexpr std::int64_t reach = 3000;
    std::int64_t best = expected - reach;
    for (std::int64_t frame = best; frame < expected + reach; ++frame) {
        if (std::fabs(samples[static_cast<std::size_t>(frame)])
            > std::fabs(samples[static_cast<std::size_t>(best)])) {
            best = frame;
        }
    }
    return best - expected;
}

TEST_P(EveryFormat, HasExactlyTheFramesOfMusic)
{
    const AudioFileReader reader(MusicFixtures::shared().file(GetParam()));
    EXPECT_EQ(reader.format().sampleRate, GetParam().sampleRate);
    EXPECT_EQ(reader.format().channelCount, 2U);
    if (GetParam().length == MusicFormat::Length::exact) {
        // A converter of the sample rate may round the length up.
        const bool isConverted = GetParam().sampleRate != 44100;
        EXPECT_NEAR(static_cast<double>(reader.length()), static_cast<double>(expectedLength()),
                    isConverted ? 1 : 0);
    } else {
        EXPECT_GE(reader.length(), expectedLength());
        EXPECT_LT(reader.length(), expectedLength() + GetParam().slack);
    }
}

TEST_P(EveryFormat, DecodesToSoundUpToItsLength)
{
    AudioFileReader reader(MusicFixtures::shared().file(GetParam()));
    const Samples samples = readAll(reader);
    ASSERT_EQ(samples.front().size(), static_cast<std::size_t>(reader.length()));
    float loudest = 0;
    const std::size_t end =
        std::min(samples.front().size(), static_cast<std::size_t>(expectedLength()));
    for (std::size_t frame = end - 500; frame < end; ++frame) {
        loudest = std::max(loudest, std::fabs(samples.front()[frame]));
    }
    EXPECT_GT(loudest, 0.05F) << "silence at the end";
}

TEST_P(EveryFormat, PutsTheMusicWhereItWas)
{
    AudioFileReader reader(MusicFixtures::shared().file(GetParam()));
    const Samples samples = readAll(reader);
    // Padding that the file does not tell of may shift the music, by less than the slack.
    const std::int64_t tolerance = std::max<std::int64_t>(GetParam().slack, 2);
    for (const std::int64_t second : {1, 12, 22}) {
        const std::int64_t shift = clickShift(samples.front(), second * GetParam().sampleRate);
        EXPECT_LE(std::abs(shift), tolerance) << "in second " << second;
    }
}

class EveryLosslessFormat : public EveryFormat {};

TEST_P(EveryLosslessFormat, KeepsEverySampleOfItsSource)
{
    AudioFileReader reader(MusicFixtures::shared().file(GetParam()));
    const Samples samples = readAll(reader);
    const Recording& song = MusicFixtures::shared().song();
    for (std::size_t channel = 0; channel < 2; ++channel) {
        const auto& source = song.channels[channel];
        ASSERT_GE(samples[channel].size(), source.size());
        for (std::size_t frame = 0; frame < source.size(); ++frame) {
            ASSERT_EQ(samples[channel][frame], static_cast<float>(source[frame]) / 32768.0F)
                << "channel " << channel << " frame " << frame;
        }
    }
}

TEST_P(EveryFormat, GivesTheSameFramesFromAnyStartInAnyBlocks)
{
    AudioFileReader reader(MusicFixtures::shared().file(GetParam()));
    const Samples whole = readAll(reader, 4096);
    const std::int64_t length = reader.length();
    const std::int64_t tenSeconds = 10 * std::int64_t{GetParam().sampleRate};
    std::vector<std::int64_t> starts = {0,          1,      length - 1,         tenSeconds - 1,
                                        tenSeconds, length, 2 * tenSeconds + 1, length - 3000};
    std::mt19937 random(42);
    for (int count = 0; count < 20; ++count) {
        starts.push_back(static_cast<std::int64_t>(random()) % length);
    }
    constexpr std::array<std::uint32_t, 6> blockSizes = {1, 512, 777, 1152, 4096, 30000};
    const float tolerance = GetParam().loss == MusicFormat::Loss::none ? 0.0F : 1e-4F;
    for (std::size_t index = 0; index < starts.size(); ++index) {
        const std::int64_t start = starts[index];
        const std::uint32_t blockSize = blockSizes[index % blockSizes.size()];
        const std::int64_t end =
            std::min<std::int64_t>(start + 3 * std::int64_t{blockSize} + 5, length);
        const Samples part = readFrames(reader, start, end, blockSize);
        EXPECT_LE(largestDifference(part, whole, start), tolerance)
            << "from " << start << " in blocks of " << blockSize;
    }
}

TEST_P(EveryFormat, IsReadToItsEndWhereverItIsCut)
{
    const auto bytes = readBytes(MusicFixtures::shared().file(GetParam()));
    const TemporaryFolder folder;
    const auto path = folder.path() / GetParam().fileName;
    for (std::size_t tenth = 1; tenth < 10; ++tenth) {
        writeBytes(path, std::span(bytes).first(bytes.size() * tenth / 10));
        try {
            AudioFileReader reader(path);
            EXPECT_LE(reader.length(), expectedLength() + GetParam().slack + 1);
            EXPECT_EQ(readAll(reader).front().size(), static_cast<std::size_t>(reader.length()));
        } catch (const LocalizedError& error) {
            EXPECT_FALSE(error.errorDescription().empty());
        }
    }
}

TEST_P(EveryFormat, KeepsItsTimeLineOverDamage)
{
    auto bytes = readBytes(MusicFixtures::shared().file(GetParam()));
    AudioFileReader intact(MusicFixtures::shared().file(GetParam()));
    std::mt19937 random(7);
    const std::size_t middle = bytes.size() / 2;
    for (std::size_t index = middle; index < middle + 3000; ++index) {
        bytes[index] = static_cast<std::uint8_t>(random());
    }
    const TemporaryFolder folder;
    const auto path = folder.path() / GetParam().fileName;
    writeBytes(path, bytes);
    AudioFileReader damaged(path);
    const Samples whole = readAll(damaged);
    EXPECT_EQ(whole.front().size(), static_cast<std::size_t>(damaged.length()));
}

INSTANTIATE_TEST_SUITE_P(AudioFileReader, EveryFormat, testing::ValuesIn(musicFormats()),
                         [](const auto& tested) { return tested.param.name; });

std::vector<MusicFormat> losslessFormats()
{
    std::vector<MusicFormat> formats;
    std::ranges::copy_if(
        musicFormats(), std::back_inserter(formats),
        [](const MusicFormat& format) { return format.loss == MusicFormat::Loss::none; });
    return formats;
}

INSTANTIATE_TEST_SUITE_P(AudioFileReader, EveryLosslessFormat, testing::ValuesIn(losslessFormats()),
                         [](const auto& test) { return test.param.name; });

}  // namespace

}  // namespace tonvale
