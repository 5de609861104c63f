// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Foundation/FileDescriptor.h"

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tonvale::test {

struct ProgramResult {
    int exitStatus = -1;   ///< -1 when a signal ended the program
    int signalNumber = 0;  ///< 0 when it exited by itself
    std::string standardOutput;
    std::string standardError;
};

struct ProgramOptions {
    std::filesystem::path folder;           ///< to run in; empty: the test's own
    std::function<void()> prepare = [] {};  ///< runs in the new process just before the program
};

/// A program running beside the test.
class RunningProgram {
public:
    RunningProgram(const std::vector<std::string>& arguments, const ProgramOptions& options);
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    void sendSignal(int signalNumber) const;
    /// Whether it has not ended yet. What it wrote, and how it ended, is still there for wait().
    [[nodiscard]] bool isAlive() const;
    /// Waits for its end.
    ProgramResult wait();

private:
    pid_t process_ = -1;
    FileDescriptor output_;  // our ends of the program's pipes
    FileDescriptor error_;
};

/// Runs a program to its end, without a shell and with no standard input.
/// @param arguments  the program's path or name first
ProgramResult runProgram(const std::vector<std::string>& arguments,
                         const ProgramOptions& options = {});

}  // namespace tonvale::test
