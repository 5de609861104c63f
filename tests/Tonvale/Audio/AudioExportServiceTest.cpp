// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Audio/AudioExportService.h"

#include "Platform/Foundation/LocalizedError.h"
#include "Support/Songs.h"
#include "Support/TemporaryFolder.h"
#include "Tonvale/Audio/AudioExportError.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace tonvale {
namespace {

using test::Channels;
using test::Song;

std::string bytesOf(const std::filesystem::path& url)
{
    std::ifstream file(url, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class AudioExport : public ::testing::Test {
protected:
    [[nodiscard]] std::filesystem::path in(const std::string& name) const
    {
        return folder.path() / name;
    }

    std::filesystem::path makeSong(const std::string& name, const Channels& channels,
                                   double sampleRate = 44100)
    {
        test::writeSong(in(name), sampleRate, channels);
        return in(name);
    }

    std::string failureOf(const std::filesystem::path& source,
                          const std::filesystem::path& destination)
    {
        try {
            AudioExportService::render(source, destination, 300);
        } catch (const LocalizedError& error) {
            return error.errorDescription();
        }
        return "";
    }

    test::TemporaryFolder folder;
};

TEST_F(AudioExport, ShiftsEveryChannelAndKeepsRateLengthAndChannels)
{
    for (const double sampleRate : {8000.0, 44100.0, 48000.0}) {
        const auto source =
            makeSong("source.wav", test::tones({440, 660}, sampleRate, 20011), sampleRate);
        AudioExportService::render(source, in("result.wav"), 300);
        const Song result = test::readSong(in("result.wav"));
        EXPECT_EQ(result.format, (AudioFormat{sampleRate, 2}));
        ASSERT_EQ(result.channels[0].size(), 20011U);
        const double ratio = std::exp2(3.0 / 12);
        // The steady middle of the tones lasts long enough to tell a cent at these rates.
        EXPECT_NEAR(
            test::centsBetween(440 * ratio, test::frequencyOf(result.channels[0], sampleRate)), 0,
            1);
        EXPECT_NEAR(
            test::centsBetween(660 * ratio, test::frequencyOf(result.channels[1], sampleRate)), 0,
            1);
    }
}

TEST_F(AudioExport, KeepsOneToEightChannels)
{
    for (std::size_t count = 1; count <= 8; ++count) {
        std::vector<double> frequencies;
        for (std::size_t channel = 0; channel < count; ++channel) {
            frequencies.push_back(300.0 + 50.0 * static_cast<double>(channel));
        }
        const auto source = makeSong("source.wav", test::tones(frequencies, 22050, 9000), 22050);
        AudioExportService::render(source, in("result.wav"), -500);
        const Song result = test::readSong(in("result.wav"));
        ASSERT_EQ(result.channels.size(), count);
        for (std::size_t channel = 0; channel < count; ++channel) {
            const double expected = frequencies[channel] * std::exp2(-5.0 / 12);
            EXPECT_NEAR(
                test::centsBetween(expected, test::frequencyOf(result.channels[channel], 22050)), 0,
                5)
                << count << " channels, number " << channel;
        }
    }
}

TEST_F(AudioExport, WritesInterleaved16BitLittleEndianSamplesBehindAWaveHeader)
{
    const auto source = makeSong("source.wav", test::tones({440, 660}, 44100, 5000));
    AudioExportService::render(source, in("result.wav"), 0);
    const std::string file = bytesOf(in("result.wav"));
    ASSERT_EQ(file.size(), 44U + 5000 * 4);
    EXPECT_EQ(file.substr(0, 4) + file.substr(8, 8), "RIFFWAVEfmt ");
    // Format 1 (PCM), 2 channels; 44,100 frames per second; 4 bytes per frame, 16 bits per sample.
    EXPECT_EQ(file.substr(20, 4), std::string("\x01\x00\x02\x00", 4));
    EXPECT_EQ(file.substr(24, 4), std::string("\x44\xAC\x00\x00", 4));
    EXPECT_EQ(file.substr(32, 4), std::string("\x04\x00\x10\x00", 4));
    const Song decoded = test::readSong(in("result.wav"));
    const auto sampleAt = [&file](std::size_t offset) {
        const auto low = static_cast<unsigned char>(file[offset]);
        const auto high = static_cast<signed char>(file[offset + 1]);
        return static_cast<float>(high * 256 + low) / 32768.0F;
    };
    EXPECT_EQ(sampleAt(44 + 4 * 1234), decoded.channels[0][1234]);
    EXPECT_EQ(sampleAt(44 + 4 * 1234 + 2), decoded.channels[1][1234]);
}

TEST_F(AudioExport, ChoosesTheContainerByTheExtension)
{
    const auto source = makeSong("source.wav", test::tones({440}, 44100, 5000));
    for (const auto& [name, magic] :
         std::vector<std::pair<std::string, std::string>>{{"a.wav", "RIFF"},
                                                          {"a.WAV", "RIFF"},
                                                          {"a.aif", "FORM"},
                                                          {"a.AIFF", "FORM"},
                                                          {"a.caf", "caff"}}) {
        AudioExportService::render(source, in(name), 100);
        EXPECT_TRUE(bytesOf(in(name)).starts_with(magic)) << name;
        EXPECT_EQ(test::readSong(in(name)).channels[0].size(), 5000U) << name;
    }
    EXPECT_EQ(failureOf(source, in("a.mp3")), "Format not recognised.");
    EXPECT_FALSE(std::filesystem::exists(in("a.mp3")));
}

TEST_F(AudioExport, ReplacesAFileThatIsThere)
{
    const auto source = makeSong("source.wav", test::tones({440}, 44100, 5000));
    std::ofstream(in("result.wav")) << std::string(1000000, 'x');
    AudioExportService::render(source, in("result.wav"), 100);
    EXPECT_EQ(std::filesystem::file_size(in("result.wav")), 44U + 5000 * 2);
}

TEST_F(AudioExport, CanReplaceItsOwnSource)
{
    const auto source = makeSong("song.wav", test::tones({440}, 44100, 44100));
    AudioExportService::render(source, source, 300);
    const Song result = test::readSong(source);
    ASSERT_EQ(result.channels[0].size(), 44100U);
    EXPECT_NEAR(
        test::centsBetween(440 * std::exp2(0.25), test::frequencyOf(result.channels[0], 44100)), 0,
        1);
}

TEST_F(AudioExport, LeavesAFileWithoutAudioForASongWithoutFrames)
{
    const auto source = makeSong("empty.wav", {{}});
    try {
        AudioExportService::render(source, in("result.wav"), 300);
        FAIL() << "did not throw";
    } catch (const AudioExportError& error) {
        EXPECT_EQ(error, AudioExportError(AudioExportError::emptyRender));
    }
    EXPECT_EQ(std::filesystem::file_size(in("result.wav")), 44U);
}

TEST_F(AudioExport, LeavesTheDestinationAloneWhenTheSourceCannotBeOpened)
{
    std::ofstream(in("result.wav")) << "precious";
    EXPECT_EQ(failureOf(in("missing.wav"), in("result.wav")), "No such file or directory");
    EXPECT_EQ(bytesOf(in("result.wav")), "precious");
}

TEST_F(AudioExport, DoesNotDeleteADirectoryInItsWay)
{
    const auto source = makeSong("source.wav", test::tones({440}, 44100, 100));
    std::filesystem::create_directory(in("result.wav"));
    EXPECT_EQ(failureOf(source, in("result.wav")), "Is a directory");
    EXPECT_TRUE(std::filesystem::is_directory(in("result.wav")));
}

TEST_F(AudioExport, FailsInTheSystemsWordsWhereItCannotWrite)
{
    const auto source = makeSong("source.wav", test::tones({440}, 44100, 100));
    EXPECT_EQ(failureOf(source, in("no such folder") / "a.wav"), "No such file or directory");
    EXPECT_EQ(failureOf(source, source / "a.wav"), "Not a directory");
    EXPECT_NE(failureOf(source, "/proc/tonvale.wav"), "");
}

TEST_F(AudioExport, KeepsTheUnfinishedFileWhenTheObserverStopsIt)
{
    const auto source = makeSong("source.wav", test::tones({440}, 44100, 20000));
    std::vector<std::int64_t> seen;
    const auto stopAfterTwo = [&seen](RenderProgress progress) {
        EXPECT_EQ(progress.totalFrames, 20000);
        seen.push_back(progress.renderedFrames);
        if (seen.size() == 3) {
            throw std::runtime_error("stop");
        }
    };
    EXPECT_THROW(AudioExportService::render(source, in("result.wav"), 300, stopAfterTwo),
                 std::runtime_error);
    EXPECT_EQ(seen, (std::vector<std::int64_t>{0, 4096, 8192}));
    EXPECT_TRUE(std::filesystem::exists(in("result.wav")));
}

TEST_F(AudioExport, GivesAnUnshiftedSongBackSampleForSample)
{
    const auto source = makeSong("source.wav", test::tones({440, 660}, 44100, 44100));
    AudioExportService::render(source, in("result.wav"), 0);
    EXPECT_EQ(test::readSong(in("result.wav")).channels, test::readSong(source).channels);
}

TEST_F(AudioExport, RendersSideBySideWhatItRendersAlone)
{
    const auto source = makeSong("source.wav", test::tones({440, 550}, 44100, 20000));
    AudioExportService::render(source, in("alone.wav"), -300);
    std::vector<std::thread> renders;
    for (int number = 0; number < 3; ++number) {
        renders.emplace_back([&, number] {
            AudioExportService::render(source, in(std::to_string(number) + ".wav"), -300);
        });
    }
    for (std::thread& render : renders) {
        render.join();
    }
    for (int number = 0; number < 3; ++number) {
        EXPECT_EQ(bytesOf(in(std::to_string(number) + ".wav")), bytesOf(in("alone.wav")));
    }
}

TEST_F(AudioExport, DoesNotClipASongMasteredToFullScale)
{
    // Six partials that are loudest together: shifted, their peaks fall elsewhere and higher.
    std::vector<float> loud(44100);
    for (std::size_t frame = 0; frame < loud.size(); ++frame) {
        const double time = static_cast<double>(frame) / 44100;
        double sum = 0;
        for (int partial = 1; partial <= 6; ++partial) {
            sum += std::sin(2 * 3.14159265358979 * 110 * partial * time + partial * partial);
        }
        loud[frame] = static_cast<float>(std::clamp(sum / 3, -1.0, 0.99996));
    }
    const auto source = makeSong("loud.wav", {loud});
    for (const int cents : {-600, -300, 300, 600}) {
        AudioExportService::render(source, in("result.wav"), cents);
        const auto samples = test::readSong(in("result.wav")).channels[0];
        const auto isClipped = [](float sample) { return std::abs(sample) >= 32767.0F / 32768.0F; };
        EXPECT_EQ(std::ranges::count_if(samples, isClipped), 0) << cents;
        EXPECT_GT(*std::ranges::max_element(samples), 0.95F) << cents;
    }
}

}  // namespace
}  // namespace tonvale
