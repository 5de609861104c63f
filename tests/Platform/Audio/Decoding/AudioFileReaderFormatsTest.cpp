// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/AudioFileReader.h"
#include "Platform/Audio/Decoding/ReadAll.h"
#include "Platform/Foundation/PlatformError.h"
#include "Support/MusicFixtures.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <iterator>
#include <random>
#include <string>
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

/// Bytes that the C library has given out.
std::size_t memoryInUse()
{
    const struct mallinfo2 account = ::mallinfo2();
    return account.uordblks + account.hblkhd;
}

TEST_P(EveryFormat, TakesNoMoreMemoryHoweverOftenItIsRead)
{
    AudioFileReader reader(MusicFixtures::shared().file(GetParam()));
    const auto readBothEnds = [&reader] {
        static_cast<void>(readFrames(reader, 0, 40000, 4096));
        static_cast<void>(readFrames(reader, reader.length() - 40000, reader.length(), 4096));
    };
    readBothEnds();
    const std::size_t before = memoryInUse();
    for (int round = 0; round < 10; ++round) {
        readBothEnds();
    }
    EXPECT_LT(memoryInUse(), before + 100'000) << "some of each packet or seek is kept";
}

/// Frames up to the last one that can be heard.
std::int64_t audibleLength(const std::vector<float>& samples)
{
    const auto last = std::find_if(samples.rbegin(), samples.rend(),
                                   [](float sample) { return std::fabs(sample) > 0.01F; });
    return samples.rend() - last;
}

TEST_P(EveryFormat, IsReadToItsEndWhereverItIsCut)
{
    const auto bytes = readBytes(MusicFixtures::shared().file(GetParam()));
    const TemporaryFolder folder;
    const auto path = folder.path() / GetParam().fileName;
    for (std::size_t tenth = 1; tenth < 10; ++tenth) {
        SCOPED_TRACE(std::to_string(tenth) + " tenths");
        writeBytes(path, std::span(bytes).first(bytes.size() * tenth / 10));
        if (GetParam().needsItsEnd) {
            EXPECT_THROW(AudioFileReader{path}, PlatformError);
            continue;
        }
        AudioFileReader reader(path);
        EXPECT_LE(reader.length(), expectedLength() + GetParam().slack + 1);
        const Samples samples = readAll(reader);
        EXPECT_EQ(samples.front().size(), static_cast<std::size_t>(reader.length()));
        // The song is equally dense everywhere; a page or block of a second may be lost, and
        // a decoder may find some sound in what is left of it.
        const double heard = static_cast<double>(audibleLength(samples.front()));
        const double expected =
            static_cast<double>(expectedLength()) * static_cast<double>(tenth) / 10;
        EXPECT_GT(heard, expected - 1.2 * GetParam().sampleRate);
        EXPECT_LT(heard, expected + 0.3 * GetParam().sampleRate);
    }
}

TEST_P(EveryFormat, SaysSoWhenItShrinksWhileItIsRead)
{
    const TemporaryFolder folder;
    const auto path = folder.path() / GetParam().fileName;
    writeBytes(path, readBytes(MusicFixtures::shared().file(GetParam())));
    AudioFileReader reader(path);
    std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
    std::string text = "no error";
    try {
        readAll(reader);
    } catch (const PlatformError& error) {
        text = error.errorDescription();
    }
    EXPECT_EQ(text, "Input/output error");
}

/// Writes the song's file with 3000 bytes in its middle replaced by noise.
void writeDamaged(const std::filesystem::path& path, const MusicFormat& format)
{
    auto bytes = readBytes(MusicFixtures::shared().file(format));
    std::mt19937 random(7);
    const std::size_t middle = bytes.size() / 2;
    for (std::size_t index = middle; index < middle + 3000; ++index) {
        bytes[index] = static_cast<std::uint8_t>(random());
    }
    writeBytes(path, bytes);
}

/// Frames [start, end).
Samples partOf(const Samples& samples, std::int64_t start, std::int64_t end)
{
    Samples part;
    for (const auto& channel : samples) {
        part.emplace_back(channel.begin() + start, channel.begin() + end);
    }
    return part;
}

TEST_P(EveryFormat, KeepsItsTimeLineOverDamage)
{
    using Damage = MusicFormat::Damage;
    const TemporaryFolder folder;
    const auto path = folder.path() / GetParam().fileName;
    writeDamaged(path, GetParam());
    AudioFileReader intactReader(MusicFixtures::shared().file(GetParam()));
    AudioFileReader damagedReader(path);
    const Samples intact = readAll(intactReader);
    const Samples damaged = readAll(damagedReader);
    const float tolerance = GetParam().loss == MusicFormat::Loss::none ? 0.0F : 1e-4F;
    // The damage lies at 11.5 s. Ogg loses the whole page, about a second, and so does TTA.
    const std::int64_t before = std::int64_t{GetParam().sampleRate} * 10;
    const std::int64_t behind = std::int64_t{GetParam().sampleRate} * 13;
    EXPECT_LE(largestDifference(partOf(damaged, 0, before), intact, 0), tolerance);
    if (GetParam().damage == Damage::keepsPlace) {
        EXPECT_EQ(damagedReader.length(), intactReader.length());
        const Samples rest = partOf(damaged, behind, damagedReader.length());
        EXPECT_LE(largestDifference(rest, intact, behind), tolerance);
    } else if (GetParam().damage == Damage::movesUp) {
        const Samples rest = partOf(damaged, behind, behind + before / 2);
        float least = 1;
        for (int packets = 1; packets <= 12; ++packets) {  // 3000 bytes are no more
            const std::int64_t place = behind + packets * GetParam().packetFrames;
            least = std::min(least, largestDifference(rest, intact, place));
        }
        EXPECT_LE(least, tolerance);
    }
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
