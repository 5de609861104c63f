// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/Program.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace tonvale::test {

namespace {

[[noreturn]] void become(const std::vector<std::string>& arguments, const ProgramOptions& options,
                         int output, int error)
{
    const int input = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::dup2(input, STDIN_FILENO);
    ::dup2(output, STDOUT_FILENO);
    ::dup2(error, STDERR_FILENO);
    if (!options.folder.empty() && ::chdir(options.folder.c_str()) != 0) {
        ::_exit(126);
    }
    options.prepare();
    std::vector<char*> words;
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    ::execvp(words.front(), words.data());
    ::_exit(127);
}

std::string contentOf(int descriptor)
{
    std::string content;
    std::array<char, 4096> part{};
    ::lseek(descriptor, 0, SEEK_SET);
    for (ssize_t count = 0; (count = ::read(descriptor, part.data(), part.size())) > 0;) {
        content.append(part.data(), static_cast<std::size_t>(count));
    }
    return content;
}

}  // namespace

RunningProgram::RunningProgram(const std::vector<std::string>& arguments,
                               const ProgramOptions& options)
    : output_(::memfd_create("output", MFD_CLOEXEC))
    , error_(::memfd_create("error", MFD_CLOEXEC))
{
    process_ = ::fork();
    if (process_ == 0) {
        become(arguments, options, output_, error_);
    }
    if (process_ < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
}

RunningProgram::~RunningProgram()
{
    if (process_ > 0) {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
    ::close(output_);
    ::close(error_);
}

void RunningProgram::sendSignal(int signalNumber) const
{
    ::kill(process_, signalNumber);
}

ProgramResult RunningProgram::wait()
{
    int status = 0;
    while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    process_ = -1;
    ProgramResult result;
    result.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.signalNumber = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    result.standardOutput = contentOf(output_);
    result.standardError = contentOf(error_);
    return result;
}

ProgramResult runProgram(const std::vector<std::string>& arguments, const ProgramOptions& options)
{
    return RunningProgram(arguments, options).wait();
}

}  // namespace tonvale::test
