// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <functional>

namespace tonvale::test {

/// Runs `body` on a thread of its own that sees private mounts: what it mounts, and the programs it
/// starts see, is seen by nobody else and ends with the thread.
/// @return false, without running it, where the system does not let us (it takes root)
[[nodiscard]] bool runWithPrivateMounts(const std::function<void()>& body);

/// Lays one file or folder over another for the calling thread. @error std::system_error
void mountOver(const std::filesystem::path& covered, const std::filesystem::path& shown);

/// Takes the uppermost layer off again. @error std::system_error
void unmount(const std::filesystem::path& covered);

}  // namespace tonvale::test
