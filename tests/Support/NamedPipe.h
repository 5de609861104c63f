// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Foundation/FileDescriptor.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace tonvale::test {

/// A named pipe by which a test and a helper tell each other that something has come to pass.
/// The helper may open it at any time without blocking; when the test lets go of it, a helper that
/// waits for a line reads the end of the file instead.
class NamedPipe {
public:
    explicit NamedPipe(std::filesystem::path path);
    ~NamedPipe();
    NamedPipe(const NamedPipe&) = delete;
    NamedPipe& operator=(const NamedPipe&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }

    void send(std::string_view line);

    /// Waits for a line. @error std::runtime_error when none comes within 30 seconds
    [[nodiscard]] std::string receive();

private:
    std::filesystem::path path_;
    FileDescriptor descriptor_;
};

}  // namespace tonvale::test
