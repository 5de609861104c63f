// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/HelperProcess.h"

#include "Platform/Foundation/FileDescriptor.h"
#include "Platform/Foundation/PlatformError.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <cstddef>

namespace tonvale {

namespace {

void check(int errorNumber)
{
    if (errorNumber != 0) {
        throw PlatformError::fromErrno(errorNumber);
    }
}

struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

/// Close-on-exec from the first moment: a program that another thread starts just now must not get
/// our write end, or we would read until that program ends too.
Pipe makePipe()
{
    std::array<int, 2> ends{};
    check(::pipe2(ends.data(), O_CLOEXEC) == 0 ? 0 : errno);
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

/// What the child does to its descriptors before it becomes the helper.
class FileActions {
public:
    FileActions(const FileDescriptor& standardOutput, const FileDescriptor& standardError)
        : FileActions()
    {
        // Right also where a pipe took the number of a standard stream that we ourselves lack:
        // duplicating a descriptor onto itself keeps it open in the helper.
        check(::posix_spawn_file_actions_adddup2(&actions_, standardOutput.get(), STDOUT_FILENO));
        check(::posix_spawn_file_actions_adddup2(&actions_, standardError.get(), STDERR_FILENO));
        check(::posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1));
    }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions() { ::posix_spawn_file_actions_destroy(&actions_); }

    [[nodiscard]] const posix_spawn_file_actions_t* get() const noexcept { return &actions_; }

private:
    FileActions() { check(::posix_spawn_file_actions_init(&actions_)); }

    posix_spawn_file_actions_t actions_{};
};

/// The null-ended list that exec wants; valid as long as `texts`.
std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

pid_t launch(const HelperProcess& helper, const FileActions& actions)
{
    std::vector<std::string> arguments{helper.executable.native()};
    arguments.insert(arguments.end(), helper.arguments.begin(), helper.arguments.end());
    std::vector<std::string> environment = helper.environment;
    pid_t process = -1;
    // The result is also the error of an exec that failed in the child.
    check(::posix_spawn(&process, helper.executable.c_str(), actions.get(), nullptr,
                        pointersTo(arguments).data(), pointersTo(environment).data()));
    return process;
}

int waitUntilExit(pid_t process)
{
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        check(errno == EINTR ? 0 : errno);
    }
    return WIFSIGNALED(status) ? WTERMSIG(status) : WEXITSTATUS(status);
}

std::string readToEnd(const FileDescriptor& descriptor)
{
    std::string text;
    std::array<char, 16384> block;
    for (;;) {
        const ssize_t count = ::read(descriptor.get(), block.data(), block.size());
        if (count == 0) {
            return text;
        }
        if (count > 0) {
            text.append(block.data(), static_cast<std::size_t>(count));
        } else {
            check(errno == EINTR ? 0 : errno);
        }
    }
}

}  // namespace

HelperOutcome HelperProcess::run() const
{
    Pipe standardOutput = makePipe();
    Pipe standardError = makePipe();
    const pid_t process =
        launch(*this, FileActions(standardOutput.writeEnd, standardError.writeEnd));
    standardOutput.writeEnd.close();
    standardError.writeEnd.close();

    HelperOutcome outcome{};
    outcome.terminationStatus = waitUntilExit(process);
    outcome.standardOutput = readToEnd(standardOutput.readEnd);
    outcome.standardError = readToEnd(standardError.readEnd);
    return outcome;
}

}  // namespace tonvale
