// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

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

/// A program running beside the test, its output going into files.
class RunningProgram {
public:
    RunningProgram(const std::vector<std::string>& arguments, const ProgramOptions& options);
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    void sendSignal(int signalNumber) const;
    /// Waits for its end.
    ProgramResult wait();

private:
    pid_t process_ = -1;
    int output_ = -1;
    int error_ = -1;
};

/// Runs a program to its end, without a shell and with no standard input.
/// @param arguments  the program's path or name first
ProgramResult runProgram(const std::vector<std::string>& arguments,
                         const ProgramOptions& options = {});

}  // namespace tonvale::test
