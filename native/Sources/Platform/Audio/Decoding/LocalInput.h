// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Decoding/FFmpeg.h"
#include "Platform/Foundation/FileDescriptor.h"

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

namespace tonvale {

/// The bytes of one regular local file, for our own parsers and, through an AVIOContext, for the
/// demuxers. The descriptor stays open, so the file may lose its name meanwhile.
/// @thread WORKER; one thread at a time
class LocalInput {
public:
    /// As pread(2).
    using ReadFunction = ssize_t (*)(int descriptor, void* data, std::size_t count, off_t offset);

    /// @error PlatformError in strerror's words; a directory, FIFO or device is refused at once
    [[nodiscard]] static std::unique_ptr<LocalInput> open(const std::filesystem::path& url);

    /// @param name  the file's name, only a hint for recognising its format
    LocalInput(FileDescriptor descriptor, std::int64_t size, std::string name, ReadFunction read);
    LocalInput(const LocalInput&) = delete;
    LocalInput& operator=(const LocalInput&) = delete;

    [[nodiscard]] std::int64_t size() const noexcept { return size_; }  ///< bytes
    [[nodiscard]] const std::string& name() const noexcept { return name_; }

    /// Reads the bytes from `offset` on; fewer than asked for only at the end of the file.
    /// @error PlatformError when the disk fails, or the file ends before size()
    std::size_t readAt(std::int64_t offset, std::span<std::uint8_t> bytes);

    /// A new context at the start of the file; it refers to this object.
    [[nodiscard]] UniqueIOContext makeContext();

    /// Turns a disk error that a context met, and the library may have taken for the end of the
    /// file, into an exception.
    /// @error PlatformError
    void throwIfFailed() const;
    /// Until the next failure. A disk may have come back, and a file that was cut off still has all
    /// that lies before the cut.
    void forgetFailure() noexcept { failure_ = 0; }

private:
    static int readPacket(void* opaque, std::uint8_t* data, int count);
    static std::int64_t seekPacket(void* opaque, std::int64_t offset, int whence);

    /// @return bytes read, 0 at the end, or a negative errno, which is also kept;
    ///         an end before size() is an I/O error
    std::int64_t readSome(std::int64_t offset, std::uint8_t* data, std::size_t count) noexcept;

    FileDescriptor descriptor_;
    std::int64_t size_;
    std::string name_;
    ReadFunction read_;
    std::int64_t cursor_ = 0;  ///< of the context
    int failure_ = 0;          ///< errno of the last failed read
};

}  // namespace tonvale
