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

/// A disk that cannot be read from the middle of the file on.
constexpr off_t badSector = 100000;

ssize_t readUpToBadSector(int descriptor, void* data, std::size_t count, off_t offset)
{
    if (offset + static_cast<off_t>(count) > badSector) {
        if (offset >= badSector) {
            errno = EIO;
            return -1;
        }
        count = static_cast<std::size_t>(badSector - offset);
    }
    return pread(descriptor, data, count, offset);
}

class FailingDisk : public testing::TestWithParam<std::string> {};

TEST_P(FailingDisk, IsReportedInTheSystemsWords)
{
    const auto path = MusicFixtures::shared().file(musicFormat(GetParam()));
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(path));
    ASSERT_GT(size, badSector + 1000);
    FileDescriptor descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::string text = "no error";
    try {
        MusicStream stream(std::make_unique<LocalInput>(
            std::move(descriptor), size, path.filename().string(), &readUpToBadSector));
        readAll(stream);
    } catch (const PlatformError& error) {
        text = error.errorDescription();
    }
    EXPECT_EQ(text, "Input/output error");
}

INSTANTIATE_TEST_SUITE_P(MusicStream, FailingDisk,
                         testing::Values("wav16", "flac", "mp3Constant", "m4aAac", "vorbis", "adts",
                                         "wma2", "matroskaFlac"),
                         [](const auto& tested) { return tested.param; });

}  // namespace

}  // namespace tonvale
