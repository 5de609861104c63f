// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tonvale {

/// How a helper ended, and all that it printed.
struct HelperOutcome {
    int terminationStatus;  // the exit status, or the number of the signal that killed it
    std::string standardOutput;
    std::string standardError;
};

/// An external program that does one small job and prints a short answer.
struct HelperProcess {
    std::filesystem::path executable;      // absolute; no search path is looked at
    std::vector<std::string> arguments;    // those behind the program's own name
    std::vector<std::string> environment;  // "NAME=value"; the helper sees these and no others

    /// Starts the program, waits until it has ended, and only then reads what it printed: a helper
    /// that prints more than a pipe holds (64 KiB a stream) waits for ever, and so does the caller.
    /// There is no time limit, and nothing ends the helper. Standard input and working directory
    /// are our own; every other descriptor of ours is closed to it. Runs may go on beside each
    /// other.
    /// @error PlatformError where the program cannot be started or its answer not be read
    /// @thread WORKER
    [[nodiscard]] HelperOutcome run() const;
};

}  // namespace tonvale
