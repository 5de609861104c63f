// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/OutputFile.h"

#include "Platform/Foundation/PlatformError.h"
#include "Tonvale/Keys/ExportFileName.h"
#include "Tonvale/Keys/TranspositionInterval.h"
#include "TonvaleRender/TerminalText.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

namespace tonvale {

namespace {

std::string countOf(int number, const std::string& unit)
{
    return formatSigned(number) + " " + unit + (std::abs(number) == 1 ? "" : "s");
}

std::filesystem::path defaultName(const RenderRequest& request)
{
    if (request.targetKey) {
        return defaultExportFileName(request.input, *request.targetKey);
    }
    const std::string shift = request.countsSemitones ? countOf(request.cents / 100, "semitone")
                                                      : countOf(request.cents, "cent");
    std::filesystem::path name = request.input.stem();
    name += " (" + shift + ").wav";
    return name;
}

[[noreturn]] void refuse(const std::filesystem::path& output, const std::string& reason)
{
    throw PlatformError(quotedName(output) + " " + reason);
}

void checkExtension(const std::filesystem::path& output)
{
    std::string extension = output.extension().string();
    std::ranges::transform(extension, extension.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
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

std::filesystem::path outputFor(const RenderRequest& request)
{
    if (request.output) {
        return *request.output;
    }
    return request.input.parent_path() / defaultName(request);
}

void checkOutput(const std::filesystem::path& output, const RenderRequest& request)
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
    const auto input = statusOf(request.input);
    if (input && input->st_dev == existing->st_dev && input->st_ino == existing->st_ino) {
        refuse(output, "is the song itself and is left alone.");
    }
    if (!request.replacesOutput) {
        refuse(output, "exists already; --force replaces it.");
    }
}

}  // namespace tonvale
