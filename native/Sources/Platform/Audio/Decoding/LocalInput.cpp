// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Decoding/LocalInput.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace tonvale {

namespace {

constexpr int contextBufferSize = 32768;  // bytes; fewer, larger reads do not measure faster

std::int64_t sizeOfRegularFile(const FileDescriptor& descriptor)
{
    struct stat status = {};
    if (fstat(descriptor.get(), &status) != 0) {
        throw PlatformError::fromErrno(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        throw PlatformError::fromErrno(EISDIR);
    }
    if (!S_ISREG(status.st_mode)) {
        throw PlatformError("Not a regular file");
    }
    return status.st_size;
}

}  // namespace

std::unique_ptr<LocalInput> LocalInput::open(const std::filesystem::path& url)
{
    // O_NONBLOCK: opening a FIFO must not wait for its writer. Regular files ignore it.
    FileDescriptor descriptor(::open(url.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!descriptor.isOpen()) {
        throw PlatformError::fromErrno(errno);
    }
    const std::int64_t size = sizeOfRegularFile(descriptor);
    return std::make_unique<LocalInput>(std::move(descriptor), size, url.filename().string(),
                                        &::pread);
}

LocalInput::LocalInput(FileDescriptor descriptor, std::int64_t size, std::string name,
                       ReadFunction read)
    : descriptor_(std::move(descriptor))
    , size_(size)
    , name_(std::move(name))
    , read_(read)
{
    silenceDecoderLibraries();
}

std::size_t LocalInput::readAt(std::int64_t offset, std::span<std::uint8_t> bytes)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        const std::int64_t count = readSome(offset + static_cast<std::int64_t>(done),
                                            bytes.data() + done, bytes.size() - done);
        if (count < 0) {
            throwIfFailed();
        }
        if (count == 0) {
            break;
        }
        done += static_cast<std::size_t>(count);
    }
    return done;
}

UniqueIOContext LocalInput::makeContext()
{
    cursor_ = 0;
    auto* const buffer = static_cast<std::uint8_t*>(av_malloc(contextBufferSize));
    AVIOContext* const context = buffer == nullptr
                                     ? nullptr
                                     : avio_alloc_context(buffer, contextBufferSize, 0, this,
                                                          &readPacket, nullptr, &seekPacket);
    if (context == nullptr) {
        av_free(buffer);
        throw decoderError(outOfMemoryError);
    }
    return UniqueIOContext(context);
}

void LocalInput::throwIfFailed() const
{
    if (failure_ != 0) {
        throw PlatformError::fromErrno(failure_);
    }
}

int LocalInput::readPacket(void* opaque, std::uint8_t* data, int count)
{
    auto& input = *static_cast<LocalInput*>(opaque);
    const std::int64_t result =
        input.readSome(input.cursor_, data, static_cast<std::size_t>(std::max(count, 0)));
    if (result <= 0) {
        return result == 0 ? endOfFileError : errorFromErrno(static_cast<int>(-result));
    }
    input.cursor_ += result;
    return static_cast<int>(result);
}

std::int64_t LocalInput::seekPacket(void* opaque, std::int64_t offset, int whence)
{
    auto& input = *static_cast<LocalInput*>(opaque);
    switch (whence & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE:
        return input.size_;
    case SEEK_CUR:
        offset += input.cursor_;
        break;
    case SEEK_END:
        offset += input.size_;
        break;
    default:
        break;
    }
    if (offset < 0) {
        return errorFromErrno(EINVAL);
    }
    return input.cursor_ = offset;
}

std::int64_t LocalInput::readSome(std::int64_t offset, std::uint8_t* data,
                                  std::size_t count) noexcept
{
    while (true) {
        const ssize_t result = read_(descriptor_.get(), data, count, offset);
        if (result == 0 && count > 0 && offset < size_) {
            // The file has shrunk; taken for its end, the rest of the song would be silence.
            failure_ = EIO;
            return -failure_;
        }
        if (result >= 0) {
            return result;
        }
        if (errno != EINTR) {
            failure_ = errno;
            return -failure_;
        }
    }
}

}  // namespace tonvale
