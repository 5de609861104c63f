// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/MusicStream.h"
#include "Platform/Audio/Decoding/ReadAll.h"
#include "Platform/Foundation/PlatformError.h"
#include "Support/MusicFixtures.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <cerrno>

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

INSTANTIATE_TEST_SUITE_P(MusicStream, FailingDisk,
                         testing::Values("wav16", "flac", "mp3Constant", "m4aAac", "vorbis", "adts",
                                         "wma2", "matroskaFlac"),
                         [](const auto& tested) { return tested.param; });

}  // namespace

}  // namespace tonvale
