// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/Bundle.h"

#include <atomic>
#include <system_error>
#include <utility>

namespace tonvale {

namespace {

// Only tests ever store something else than null.
std::atomic<const Bundle*> replacement = nullptr;

/// Empty where the system does not tell. The name of an executable that was replaced by an update
/// ends in " (deleted)", its directory is right all the same.
std::filesystem::path runningExecutable()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

}  // namespace

Bundle::Bundle(std::filesystem::path executable) : executable_(std::move(executable)) {}

Bundle Bundle::main()
{
    const Bundle* bundle = replacement.load();
    return bundle != nullptr ? *bundle : Bundle(runningExecutable());
}

void Bundle::replaceMain(const Bundle* bundle) noexcept
{
    replacement.store(bundle);
}

std::optional<std::filesystem::path> Bundle::resourceURL() const
{
    if (!executable_.is_absolute()) {
        return std::nullopt;
    }
    const auto resources = (executable_.parent_path() / "../share/tonvale").lexically_normal();
    std::error_code error;
    return std::filesystem::is_directory(resources, error) ? std::optional(resources)
                                                           : std::nullopt;
}

}  // namespace tonvale
