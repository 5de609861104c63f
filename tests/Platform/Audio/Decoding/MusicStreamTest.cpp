// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/MusicStream.h"
#include "Platform/Audio/Decoding/ByteFile.h"
#include "Platform/Audio/Decoding/CodedFrame.h"
#include "Platform/Audio/Decoding/Mp3InfoTag.h"
#include "Platform/Audio/Decoding/ReadAll.h"
#include "Platform/Foundation/PlatformError.h"
#include "Support/MusicFixtures.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tonvale {

namespace {

using namespace test;

/// A disk that cannot be read from the middle of the file on, until it comes back.
constexpr off_t badSector = 150000;
bool isDiskFailing = true;

ssize_t readUpToBadSector(int descriptor, void* data, std::size_t count, off_t offset)
{
    if (isDiskFailing && offset + static_cast<off_t>(count) > badSector) {
        if (offset >= badSector) {
            errno = EIO;
            return -1;
        }
        count = static_cast<std::size_t>(badSector - offset);
    }
    return pread(descriptor, data, count, offset);
}

class FailingDisk : public testing::TestWithParam<std::string> {
protected:
    FailingDisk() { isDiskFailing = true; }

    [[nodiscard]] static std::unique_ptr<MusicStream> open()
    {
        const auto path = MusicFixtures::shared().file(musicFormat(GetParam()));
        const auto size = static_cast<std::int64_t>(std::filesystem::file_size(path));
        EXPECT_GT(size, badSector + 1000);
        FileDescriptor descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
        return std::make_unique<MusicStream>(std::make_unique<LocalInput>(
            std::move(descriptor), size, path.filename().string(), &readUpToBadSector));
    }
};

TEST_P(FailingDisk, IsReportedInTheSystemsWords)
{
    std::string text = "no error";
    try {
        readAll(*open());
    } catch (const PlatformError& error) {
        text = error.errorDescription();
    }
    EXPECT_EQ(text, "Input/output error");
}

TEST_P(FailingDisk, IsForgottenOnceItComesBack)
{
    isDiskFailing = false;
    const auto stream = open();
    const Samples whole = readAll(*stream);
    for (int round = 0; round < 2; ++round) {
        isDiskFailing = true;
        EXPECT_THROW(readAll(*stream), PlatformError);
        EXPECT_THROW(readFrames(*stream, stream->length() - 1000, stream->length(), 1000),
                     PlatformError);
        isDiskFailing = false;
        const std::int64_t middle = stream->length() / 2 + 100 * round;
        EXPECT_EQ(
            largestDifference(readFrames(*stream, middle, middle + 9000, 4096), whole, middle), 0);
    }
    EXPECT_EQ(readAll(*stream), whole);
}

TEST_P(FailingDisk, StillGivesTheMusicBeforeTheBadSector)
{
    if (GetParam() == "m4aAac") {
        GTEST_SKIP() << "what tells where the music lies is at the end of the file";
    }
    isDiskFailing = false;
    const auto stream = open();
    const Samples beginning = readFrames(*stream, 0, 10000, 1000);
    isDiskFailing = true;
    for (int round = 0; round < 2; ++round) {
        EXPECT_THROW(readAll(*stream), PlatformError);
        EXPECT_EQ(readFrames(*stream, 0, 10000, 1000), beginning);
    }
}

std::int64_t bytesRead = 0;

ssize_t readAndCount(int descriptor, void* data, std::size_t count, off_t offset)
{
    const ssize_t result = pread(descriptor, data, count, offset);
    bytesRead += std::max<ssize_t>(result, 0);
    return result;
}

/// A song of some MiB whose reads are counted.
class CountedFile {
public:
    explicit CountedFile(const std::filesystem::path& path)
        : size(static_cast<std::int64_t>(std::filesystem::file_size(path)))
        , stream(std::make_unique<LocalInput>(
              FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC)), size,
              path.filename().string(), &readAndCount))
    {
    }

    /// How many bytes it takes to come to a frame.
    std::int64_t bytesToReach(std::int64_t frame)
    {
        const std::int64_t before = bytesRead;
        static_cast<void>(readFrames(stream, frame, frame + 100, 100));
        return bytesRead - before;
    }

    std::int64_t size;
    MusicStream stream;
};

/// In files that tell where everything lies; in others the place is searched for.
class Seeking : public testing::TestWithParam<std::string> {};

TEST_P(Seeking, ReadsLittleMoreThanWhatLiesAtItsPlace)
{
    const MusicFormat& format = musicFormat(GetParam());
    CountedFile file(MusicFixtures::shared().file(format));
    for (const std::int64_t second : {21, 3, 15}) {
        EXPECT_LT(file.bytesToReach(second * format.sampleRate), file.size / 3) << second;
    }
}

INSTANTIATE_TEST_SUITE_P(MusicStream, Seeking,
                         testing::Values("wav16", "wavFloat64", "aiff", "cafPcm", "au", "cafAlac",
                                         "m4aAlac", "tta"),
                         [](const auto& tested) { return tested.param; });

/// The song's MP3 of so many times its frames, with a tag that tells the truth.
Bytes repeated(const std::string& format, std::size_t times)
{
    const Bytes once = readBytes(MusicFixtures::shared().file(musicFormat(format)));
    const auto header = parseMpegAudioHeader(once);
    const auto body = once.begin() + header->size;
    Bytes bytes(once.begin(), body);
    for (std::size_t time = 0; time < times; ++time) {
        bytes.insert(bytes.end(), body, once.end());
    }
    const auto tag = Mp3InfoTag::parse(*header, bytes);
    const std::size_t counts = 4 + 32 + 8;  // behind header, side information, name and flags
    const std::array<std::uint64_t, 2> values = {
        static_cast<std::uint64_t>(*tag->packetCount) * times, bytes.size()};
    for (std::size_t index = 0; index < 8; ++index) {
        bytes[counts + index] =
            static_cast<std::uint8_t>(values[index / 4] >> (8 * (3 - index % 4)));
    }
    return bytes;
}

class LongMp3 : public testing::TestWithParam<std::string> {
protected:
    [[nodiscard]] std::filesystem::path write(const Bytes& bytes) const
    {
        writeBytes(folder_.path() / "song.mp3", bytes);
        return folder_.path() / "song.mp3";
    }

    TemporaryFolder folder_;
};

TEST_P(LongMp3, IsNotReadWholeToKnowItsLength)
{
    Bytes bytes = repeated(GetParam(), 6);
    bytesRead = 0;
    const CountedFile honest(write(bytes));
    EXPECT_LT(bytesRead, honest.size * 2 / 3);
    EXPECT_GT(honest.stream.length(), 5 * MusicFixtures::shared().song().length());

    bytes[4 + 32 + 8 + 2] += 8;  // 2048 packets more than there are
    bytesRead = 0;
    const CountedFile lying(write(bytes));
    EXPECT_GT(bytesRead, lying.size);
    EXPECT_NEAR(static_cast<double>(lying.stream.length()),
                static_cast<double>(honest.stream.length()), 3 * 1152);
}

TEST_P(LongMp3, IsReadWholeOnceToComeToItsEnd)
{
    CountedFile file(write(repeated(GetParam(), 6)));
    const std::int64_t end = file.stream.length() - 1000;
    EXPECT_GT(file.bytesToReach(end), file.size / 2) << "only counting finds a frame's place";
    EXPECT_LT(file.bytesToReach(0), file.size / 4);
    EXPECT_LT(file.bytesToReach(end), file.size / 4) << "its place is known now";
    EXPECT_LT(file.bytesToReach(end / 2), file.size / 4);
}

INSTANTIATE_TEST_SUITE_P(MusicStream, LongMp3, testing::Values("mp3Constant", "mp3Variable"),
                         [](const auto& tested) { return tested.param; });

INSTANTIATE_TEST_SUITE_P(MusicStream, FailingDisk,
                         testing::Values("wav16", "flac", "mp3Constant", "m4aAac", "vorbis", "adts",
                                         "wma2", "matroskaFlac"),
                         [](const auto& tested) { return tested.param; });

TEST(MusicStream, SkipsOverThePlainSamplesBetweenWhateverTheirSize)
{
    constexpr std::uint32_t frames = 4000000;
    for (const std::uint32_t channels : {1U, 2U}) {
        // An AU file: where the samples begin, how many bytes they have, that each is a signed
        // one, 8000 frames a second, channels.
        Bytes bytes = text(".snd");
        for (const std::uint32_t field : {24U, channels * frames, 2U, 8000U, channels}) {
            append(bytes, field, 4);
        }
        for (std::uint32_t sample = 0; sample < channels * frames; ++sample) {
            bytes.push_back(static_cast<std::uint8_t>(sample / 100));
        }
        const TemporaryFolder folder;
        const auto path = folder.path() / "song.au";
        writeBytes(path, bytes);
        CountedFile file(path);
        ASSERT_EQ(file.stream.length(), frames);
        bytesRead = 0;
        for (const std::int64_t start : {3900000, 1000000}) {
            const Samples samples = readFrames(file.stream, start, start + 500, 500);
            for (std::int64_t frame = 0; frame < 500; ++frame) {
                const auto value = static_cast<std::int8_t>(channels * (start + frame) / 100);
                ASSERT_EQ(samples[0][static_cast<std::size_t>(frame)],
                          static_cast<float>(value) / 128)
                    << start + frame;
            }
        }
        EXPECT_GE(bytesRead, 1000);
        EXPECT_LT(bytesRead, 1000000) << channels << " channels";
    }
}

}  // namespace

}  // namespace tonvale
