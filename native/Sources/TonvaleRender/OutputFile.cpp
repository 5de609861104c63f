// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/OutputFile.h"

#include "Platform/Foundation/LowerCase.h"
#include "Platform/Foundation/PlatformError.h"
#include "TonvaleRender/TerminalText.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace tonvale {

namespace {

[[noreturn]] void refuse(const std::filesystem::path& output, const std::string& reason)
{
    throw PlatformError(quotedName(output) + " " + reason);
}

void checkExtension(const std::filesystem::path& output)
{
    std::string extension = output.extension().string();
    std::ranges::transform(extension, extension.begin(), lowerCased);
    constexpr std::array<std::string_view, 4> known{".wav", ".aif", ".aiff", ".caf"};
    if (std::ranges::find(known, extension) == known.end()) {
        refuse(output, "cannot be written: the name must end in .wav, .aif, .aiff or .caf.");
    }
}

std::optional<struct stat> statusOf(const std::filesystem::path& url)
{
    struct stat status = {};
    return ::stat(url.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

/// A link that leads nowhere exists all the same, and writing through it would surprise.
bool isDanglingLink(const std::filesystem::path& url)
{
    struct stat status = {};
    return ::lstat(url.c_str(), &status) == 0 && S_ISLNK(status.st_mode) && !statusOf(url);
}

void checkFolder(const std::filesystem::path& output)
{
    const std::filesystem::path folder = output.has_parent_path() ? output.parent_path() : ".";
    const auto status = statusOf(folder);
    if (!status || !S_ISDIR(status->st_mode)) {
        refuse(output, "cannot be written: its folder does not exist.");
    }
}

}  // namespace

bool isFolder(const std::filesystem::path& output)
{
    const auto status = statusOf(output);
    return output.native().ends_with('/') || (status && S_ISDIR(status->st_mode));
}

void createFolder(const std::filesystem::path& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (!error && !std::filesystem::is_directory(folder, error)) {
        error = std::make_error_code(std::errc::not_a_directory);
    }
    if (error) {
        refuse(folder, "cannot be made a folder: " + error.message() + ".");
    }
}

void checkOutput(const std::filesystem::path& output, const InputFiles& songs, bool replacesOutput)
{
    checkExtension(output);
    checkFolder(output);
    const auto existing = statusOf(output);
    if (isDanglingLink(output) || (existing && !S_ISREG(existing->st_mode))) {
        refuse(output, "is not a regular file and is left alone.");
    }
    if (!existing) {
        return;
    }
    if (songs.contains(*existing)) {
        refuse(output, songs.areSeveral() ? "is one of the songs and is left alone."
                                          : "is the song itself and is left alone.");
    }
    if (!replacesOutput) {
        refuse(output, "exists already; --force replaces it.");
    }
}

}  // namespace tonvale
