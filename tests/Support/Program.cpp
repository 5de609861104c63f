// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/Program.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

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
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP}) {
        ::signal(signalNumber, SIG_DFL);  // a background job inherits them ignored
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

struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

Pipe makePipe()
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

/// Appends what there is to read. @return false at the end
bool readSome(int descriptor, std::string& text)
{
    std::array<char, 4096> part{};
    const ssize_t count = ::read(descriptor, part.data(), part.size());
    if (count > 0) {
        text.append(part.data(), static_cast<std::size_t>(count));
    }
    return count > 0 || (count < 0 && errno == EINTR);
}

/// Reads both to their ends, whichever has something first, so that neither can fill up.
void readBoth(int output, int error, ProgramResult& result)
{
    std::array<pollfd, 2> polls{{{output, POLLIN, 0}, {error, POLLIN, 0}}};
    while (polls[0].fd >= 0 || polls[1].fd >= 0) {
        ::poll(polls.data(), polls.size(), -1);
        if (polls[0].revents != 0 && !readSome(output, result.standardOutput)) {
            polls[0].fd = -1;  // poll ignores it from now on
        }
        if (polls[1].revents != 0 && !readSome(error, result.standardError)) {
            polls[1].fd = -1;
        }
    }
}

}  // namespace

RunningProgram::RunningProgram(const std::vector<std::string>& arguments,
                               const ProgramOptions& options)
{
    Pipe output = makePipe();
    Pipe error = makePipe();
    process_ = ::fork();
    if (process_ == 0) {
        become(arguments, options, output.writeEnd.get(), error.writeEnd.get());
    }
    if (process_ < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    output_ = std::move(output.readEnd);
    error_ = std::move(error.readEnd);
}

RunningProgram::~RunningProgram()
{
    if (process_ > 0) {
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
}

void RunningProgram::sendSignal(int signalNumber) const
{
    ::kill(process_, signalNumber);
}

bool RunningProgram::isAlive() const
{
    siginfo_t state{};
    return process_ > 0
           && ::waitid(P_PID, static_cast<id_t>(process_), &state, WEXITED | WNOHANG | WNOWAIT) == 0
           && state.si_pid == 0;
}

ProgramResult RunningProgram::wait()
{
    ProgramResult result;
    readBoth(output_.get(), error_.get(), result);
    int status = 0;
    while (::waitpid(process_, &status, 0) < 0 && errno == EINTR) {
    }
    process_ = -1;
    result.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.signalNumber = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    return result;
}

ProgramResult runProgram(const std::vector<std::string>& arguments, const ProgramOptions& options)
{
    return RunningProgram(arguments, options).wait();
}

}  // namespace tonvale::test
