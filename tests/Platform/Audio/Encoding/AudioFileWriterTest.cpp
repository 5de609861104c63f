// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Encoding/AudioFileWriter.h"

#include "Platform/Audio/AudioFile.h"
#include "Platform/Foundation/PlatformError.h"
#include "Support/Program.h"
#include "Support/Songs.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace tonvale {
namespace {

AudioFileSettings settingsFor(double sampleRate, std::uint32_t channelCount)
{
    AudioFileSettings settings;
    settings.sampleRate = sampleRate;
    settings.numberOfChannels = channelCount;
    return settings;
}

std::string failureOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const PlatformError& error) {
        return error.errorDescription();
    }
    return "";
}

class AudioFileWriting : public ::testing::Test {
protected:
    test::TemporaryFolder folder;
};

TEST_F(AudioFileWriting, GivesEverySampleBackInEveryContainer)
{
    const unsigned seed = 16;
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> sample(-32768, 32767);
    for (const std::string extension : {"wav", "aif", "aiff", "caf"}) {
        for (const std::uint32_t channelCount : {1U, 2U, 6U}) {
            test::Channels channels(channelCount, std::vector<float>(1013));
            for (auto& channel : channels) {
                for (float& value : channel) {
                    value = static_cast<float>(sample(random)) / 32768.0F;
                }
            }
            const auto url = folder.path() / ("a." + extension);
            test::writeSong(url, 48000, channels);
            const test::Song song = test::readSong(url);
            EXPECT_EQ(song.format, (AudioFormat{48000, channelCount}));
            EXPECT_EQ(song.channels, channels) << extension << channelCount;
        }
    }
}

TEST_F(AudioFileWriting, CountsTheFramesWritten)
{
    AudioFile file = AudioFile::forWriting(folder.path() / "a.wav", settingsFor(44100, 2));
    EXPECT_EQ(file.length(), 0);
    const auto buffer = AudioPCMBuffer::create(file.processingFormat(), 100);
    for (const std::uint32_t frames : {0U, 70U, 1U, 0U}) {
        buffer->setFrameLength(frames);
        file.write(*buffer);
    }
    EXPECT_EQ(file.length(), 71);
}

TEST_F(AudioFileWriting, RefusesUnknownContainersAndSettingsBeforeTouchingTheDisk)
{
    const auto url = folder.path() / "a.wav";
    const auto refuses = [](const std::filesystem::path& file, const AudioFileSettings& settings) {
        return failureOf([&] { (void)AudioFile::forWriting(file, settings); })
               == "Format not recognised.";
    };
    EXPECT_TRUE(refuses(folder.path() / "a.mp3", settingsFor(44100, 2)));
    EXPECT_TRUE(refuses(folder.path() / ".wav", settingsFor(44100, 2)));
    EXPECT_TRUE(refuses(url, settingsFor(44100, 0)));
    EXPECT_TRUE(refuses(url, settingsFor(44100, 65)));
    EXPECT_TRUE(refuses(url, settingsFor(0, 2)));
    EXPECT_TRUE(refuses(url, settingsFor(0.9, 2)));
    EXPECT_TRUE(refuses(url, settingsFor(1e6 + 1, 2)));
    AudioFileSettings settings = settingsFor(44100, 2);
    settings.linearPCMBitDepth = 24;
    EXPECT_TRUE(refuses(url, settings));
    settings = settingsFor(44100, 2);
    settings.formatID = 0;
    EXPECT_TRUE(refuses(url, settings));
    settings = settingsFor(44100, 2);
    settings.linearPCMIsFloat = true;
    EXPECT_TRUE(refuses(url, settings));
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(AudioFileWriting, TakesEveryRateAndNumberOfChannelsThatCanBe)
{
    const auto url = folder.path() / "a.wav";
    for (const auto& [sampleRate, channelCount] :
         {std::pair(1.0, 2U), {1e6, 2U}, {44100.0, 64U}, {44100.4, 1U}}) {
        const test::Channels silence(channelCount, std::vector<float>(3));
        EXPECT_NO_THROW(test::writeSong(url, sampleRate, silence)) << sampleRate;
    }
}

TEST_F(AudioFileWriting, TellsWhyAFileCannotBeCreated)
{
    const auto create = [](const std::filesystem::path& url) {
        return failureOf([&] { (void)AudioFile::forWriting(url, settingsFor(44100, 2)); });
    };
    EXPECT_EQ(create(folder.path() / "missing" / "a.wav"), "No such file or directory");
    std::filesystem::create_directory(folder.path() / "b.wav");
    EXPECT_EQ(create(folder.path() / "b.wav"), "Is a directory");
}

/// Writes a short file, and tells what other programs take its loudspeakers for.
std::string layoutOf(const std::filesystem::path& url, const AudioFileSettings& settings)
{
    AudioFile file = AudioFile::forWriting(url, settings);
    const auto buffer = AudioPCMBuffer::create(file.processingFormat(), 100);
    buffer->setFrameLength(100);
    file.write(*buffer);
    file.close();
    EXPECT_EQ(AudioFile::forReading(url).length(), 100) << url;
    const auto result =
        test::runProgram({"ffprobe", "-v", "error", "-show_entries", "stream=channel_layout", "-of",
                          "default=nokey=1:noprint_wrappers=1", url.string()});
    return result.standardOutput.substr(0, result.standardOutput.find('\n'));
}

TEST_F(AudioFileWriting, GivesChannelsOfUnknownLoudspeakersTheUsualOnes)
{
    const std::vector<std::string> usual = {"2.1", "4.0", "5.0", "5.1", "6.1", "7.1"};
    for (std::uint32_t channelCount = 3; channelCount <= 8; ++channelCount) {
        EXPECT_EQ(layoutOf(folder.path() / "a.wav", settingsFor(44100, channelCount)),
                  usual[channelCount - 3]);
    }
}

TEST_F(AudioFileWriting, SaysWhereTheLoudspeakersStand)
{
    struct Case {
        std::uint32_t channelMask;
        std::uint32_t channelCount;
        std::string layout;
    };
    const std::vector<Case> cases = {
        {0x007, 3, "3.0"},       {0x033, 4, "quad"},      {0x107, 4, "4.0"},
        {0x607, 5, "5.0(side)"}, {0x60F, 6, "5.1(side)"}, {0x0FF, 8, "7.1(wide)"},
        {0x63F, 8, "7.1"},       {0x00F, 5, "5.0"},  // a bit is missing
    };
    for (const Case& tested : cases) {
        AudioFileSettings settings = settingsFor(44100, tested.channelCount);
        settings.channelMask = tested.channelMask;
        EXPECT_EQ(layoutOf(folder.path() / "a.wav", settings), tested.layout);
    }
}

TEST_F(AudioFileWriting, PassesLoudspeakersOnInEveryContainer)
{
    AudioFileSettings settings = settingsFor(44100, 4);
    settings.channelMask = 0x107;  // left, right, centre, rear centre
    for (const std::string extension : {"wav", "aiff", "caf"}) {
        const auto url = folder.path() / ("a." + extension);
        EXPECT_EQ(layoutOf(url, settings), "4.0") << extension;
        const AudioFormat format = AudioFile::forReading(url).processingFormat();
        EXPECT_EQ(format.channelMask, settings.channelMask) << extension;
        EXPECT_EQ(format, (AudioFormat{44100, 4})) << "they do not make another format";
    }
}

TEST_F(AudioFileWriting, ReadsLoudspeakersFromItsSource)
{
    const auto url = folder.path() / "a.flac";
    for (const auto& [layout, mask] :
         {std::pair<std::string, std::uint32_t>{"3.0", 0x007}, {"4.0", 0x107}, {"7.1", 0x63F}}) {
        const auto result =
            test::runProgram({"ffmpeg", "-v", "error", "-y", "-f", "lavfi", "-i",
                              "anullsrc=channel_layout=" + layout, "-t", "0.1", url.string()});
        ASSERT_EQ(result.exitStatus, 0) << result.standardError;
        EXPECT_EQ(AudioFile::forReading(url).processingFormat().channelMask, mask) << layout;
    }
}

/// Lets files grow to `bytes` while it lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &previous_);
        const rlimit limit{bytes, previous_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &previous_);
        std::signal(SIGXFSZ, handler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*handler_)(int);
    rlimit previous_{};
};

TEST_F(AudioFileWriting, ReportsADiskThatTakesNoMore)
{
    for (const std::string extension : {"wav", "aiff", "caf"}) {
        AudioFile file =
            AudioFile::forWriting(folder.path() / ("a." + extension), settingsFor(44100, 2));
        const auto buffer = AudioPCMBuffer::create(file.processingFormat(), 4096);
        buffer->setFrameLength(4096);
        const FileSizeLimit limit(100000);
        const auto writeALot = [&] {
            for (int block = 0; block < 100; ++block) {
                file.write(*buffer);
            }
        };
        EXPECT_EQ(failureOf(writeALot), "File too large") << extension;
        EXPECT_LT(file.length(), 100 * 4096);
    }
}

TEST_F(AudioFileWriting, ReportsAHeaderThatCannotBeCompleted)
{
    AudioFile file = AudioFile::forWriting(folder.path() / "a.wav", settingsFor(44100, 2));
    const auto buffer = AudioPCMBuffer::create(file.processingFormat(), 100);
    buffer->setFrameLength(100);
    file.write(*buffer);
    const FileSizeLimit limit(0);
    EXPECT_EQ(failureOf([&] { file.close(); }), "File too large");
}

TEST_F(AudioFileWriting, ReportsAFileThatWasDeletedMeanwhile)
{
    const auto url = folder.path() / "a.wav";
    AudioFile file = AudioFile::forWriting(url, settingsFor(44100, 2));
    std::filesystem::remove(url);
    EXPECT_EQ(failureOf([&] { file.close(); }), "No such file or directory");
}

TEST_F(AudioFileWriting, RefusesTheBlockThatWouldPassTheLargestSizeAndKeepsTheRestWhole)
{
    EXPECT_EQ(AudioFileWriter::fourGigabytes, 4294967295);
    constexpr std::int64_t maximumFileSize = 300000;
    const auto url = folder.path() / "a.wav";
    AudioFileWriter file(url, settingsFor(44100, 2), maximumFileSize);
    const auto buffer = AudioPCMBuffer::create(file.format(), 4096);
    buffer->setFrameLength(4096);
    const auto writeALot = [&] {
        for (int block = 0; block < 100; ++block) {
            file.write(*buffer);
        }
    };
    EXPECT_EQ(failureOf(writeALot), "File too large");
    file.close();
    EXPECT_LE(std::filesystem::file_size(url), std::uintmax_t{maximumFileSize});
    EXPECT_EQ(AudioFile::forReading(url).length(), file.framesWritten());
    EXPECT_GT(file.framesWritten(), 10 * 4096);
}

}  // namespace
}  // namespace tonvale
