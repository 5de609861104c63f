// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/LocalInput.h"

#include "Platform/Audio/Decoding/ByteFile.h"
#include "Platform/Foundation/PlatformError.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <numeric>
#include <string>

namespace tonvale::test {

namespace {

Bytes countingUp()
{
    Bytes bytes(100);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    return bytes;
}

std::string failureOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const PlatformError& error) {
        return error.errorDescription();
    }
    return {};
}

TEST(LocalInputTest, TellsNameAndSize)
{
    const TemporaryFolder folder;
    const auto path = folder.path() / "Song of 3 bytes.wav";
    std::ofstream(path) << "abc";
    const auto input = LocalInput::open(path);
    EXPECT_EQ(input->name(), "Song of 3 bytes.wav");
    EXPECT_EQ(input->size(), 3);
}

TEST(LocalInputTest, KeepsTheDecodersFromPrinting)
{
    const ByteFile file({});
    EXPECT_EQ(av_log_get_level(), AV_LOG_QUIET);
}

TEST(LocalInputTest, ReadsFromAnyPlaceAndLessOnlyAtTheEnd)
{
    const ByteFile file(countingUp());
    std::array<std::uint8_t, 10> bytes = {};
    EXPECT_EQ(file.input().readAt(40, bytes), 10U);
    EXPECT_EQ(bytes.front(), 40);
    EXPECT_EQ(bytes.back(), 49);
    EXPECT_EQ(file.input().readAt(96, bytes), 4U);
    EXPECT_EQ(bytes[3], 99);
    EXPECT_EQ(file.input().readAt(100, bytes), 0U);
    EXPECT_EQ(file.input().readAt(100000, bytes), 0U);
}

/// Three bytes at a time, and interrupted by a signal every other time.
ssize_t readHaltingly(int descriptor, void* data, std::size_t count, off_t offset)
{
    static bool isInterrupted = false;
    isInterrupted = !isInterrupted;
    if (isInterrupted) {
        errno = EINTR;
        return -1;
    }
    return pread(descriptor, data, std::min<std::size_t>(count, 3), offset);
}

ssize_t failToRead(int /*descriptor*/, void* /*data*/, std::size_t /*count*/, off_t /*offset*/)
{
    errno = EACCES;
    return -1;
}

TEST(LocalInputTest, ReadsOnWhereTheSystemGivesLittleOrIsInterrupted)
{
    const TemporaryFolder folder;
    const auto path = folder.path() / "bytes";
    const Bytes written = countingUp();
    std::ofstream(path).write(reinterpret_cast<const char*>(written.data()), 100);
    LocalInput input(FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC)), 100, "bytes",
                     &readHaltingly);
    Bytes bytes(50);
    EXPECT_EQ(input.readAt(0, bytes), 50U);
    EXPECT_TRUE(std::equal(bytes.begin(), bytes.end(), written.begin()));
    EXPECT_EQ(input.readAt(80, bytes), 20U);
    EXPECT_EQ(failureOf([&] { input.throwIfFailed(); }), "") << "a signal is no failure";
}

TEST(LocalInputTest, KeepsAFailureUntilItIsForgotten)
{
    LocalInput input(FileDescriptor(), 100, "bytes", &failToRead);
    Bytes bytes(1);
    EXPECT_EQ(failureOf([&] { static_cast<void>(input.readAt(0, bytes)); }), "Permission denied");
    EXPECT_EQ(failureOf([&] { input.throwIfFailed(); }), "Permission denied");
    input.forgetFailure();
    EXPECT_EQ(failureOf([&] { input.throwIfFailed(); }), "");
}

TEST(LocalInputTest, AFileThatHasShrunkFailsBeforeItsFormerEnd)
{
    const TemporaryFolder folder;
    const auto path = folder.path() / "bytes";
    std::ofstream(path) << "abcdef";
    const auto input = LocalInput::open(path);
    std::filesystem::resize_file(path, 3);
    Bytes bytes(3);
    EXPECT_EQ(input->readAt(0, bytes), 3U);
    EXPECT_EQ(failureOf([&] { static_cast<void>(input->readAt(3, bytes)); }), "Input/output error");
    input->forgetFailure();
    EXPECT_EQ(input->readAt(6, bytes), 0U) << "there was never anything";
    EXPECT_EQ(input->readAt(4, std::span(bytes).first(0)), 0U);
    EXPECT_EQ(failureOf([&] { input->throwIfFailed(); }), "");
}

/// The functions that a context has of an input, as the library calls them.
class Context {
public:
    explicit Context(LocalInput& input) : context_(input.makeContext()) {}

    std::int64_t seek(std::int64_t offset, int whence)
    {
        return context_->seek(context_->opaque, offset, whence);
    }
    int read(Bytes& bytes)
    {
        return context_->read_packet(context_->opaque, bytes.data(),
                                     static_cast<int>(bytes.size()));
    }

private:
    UniqueIOContext context_;
};

TEST(LocalInputTest, AContextReadsAndSeeksAsAFileDoes)
{
    const ByteFile file(countingUp());
    Context context(file.input());
    Bytes bytes(10);
    EXPECT_EQ(context.read(bytes), 10);
    EXPECT_EQ(context.read(bytes), 10);
    EXPECT_EQ(bytes.front(), 10);
    EXPECT_EQ(context.seek(5, SEEK_CUR), 25);
    EXPECT_EQ(context.read(bytes), 10);
    EXPECT_EQ(bytes.front(), 25);
    EXPECT_EQ(context.seek(0, AVSEEK_SIZE), 100);
    EXPECT_EQ(context.seek(-4, SEEK_END), 96);
    EXPECT_EQ(context.read(bytes), 4);
    EXPECT_EQ(context.read(bytes), endOfFileError);
    EXPECT_EQ(context.seek(7, SEEK_SET | AVSEEK_FORCE), 7);
    EXPECT_EQ(context.read(bytes), 10);
    EXPECT_EQ(bytes.front(), 7);
}

TEST(LocalInputTest, AContextStaysWhereItIsWhenASeekLeadsBeforeTheStart)
{
    const ByteFile file(countingUp());
    Context context(file.input());
    EXPECT_EQ(context.seek(20, SEEK_SET), 20);
    EXPECT_EQ(context.seek(-1, SEEK_SET), errorFromErrno(EINVAL));
    EXPECT_EQ(context.seek(-21, SEEK_CUR), errorFromErrno(EINVAL));
    Bytes bytes(1);
    EXPECT_EQ(context.read(bytes), 1);
    EXPECT_EQ(bytes.front(), 20);
    EXPECT_EQ(context.seek(0, SEEK_SET), 0) << "the start itself is a place";
}

TEST(LocalInputTest, ANewContextBeginsAtTheStart)
{
    const ByteFile file(countingUp());
    Bytes bytes(10);
    EXPECT_EQ(Context(file.input()).read(bytes), 10);
    EXPECT_EQ(Context(file.input()).read(bytes), 10);
    EXPECT_EQ(bytes.front(), 0);
}

TEST(LocalInputTest, AContextPassesFailuresOnAndTheInputKeepsThem)
{
    LocalInput input(FileDescriptor(), 100, "bytes", &failToRead);
    Context context(input);
    Bytes bytes(10);
    EXPECT_EQ(context.read(bytes), errorFromErrno(EACCES));
    EXPECT_EQ(failureOf([&] { input.throwIfFailed(); }), "Permission denied");
}

}  // namespace

}  // namespace tonvale::test
