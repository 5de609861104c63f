// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <unistd.h>

#include <utility>

namespace tonvale {

/// Owns one POSIX file descriptor and closes it.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) noexcept : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, -1))
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { close(); }

    [[nodiscard]] int get() const noexcept { return descriptor_; }
    [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }

    /// Closes now. @return close's result: 0, or -1 with errno set; 0 when nothing was open.
    int close() noexcept
    {
        const int descriptor = std::exchange(descriptor_, -1);
        return descriptor >= 0 ? ::close(descriptor) : 0;
    }

private:
    int descriptor_ = -1;
};

}  // namespace tonvale
