// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/SessionBus.h"

#include "Platform/Foundation/FileDescriptor.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <system_error>

namespace tonvale::test {

namespace {

/// The first line that comes out of the pipe; empty when nothing comes.
std::string readLine(int pipe)
{
    std::string line;
    char letter = 0;
    while (::read(pipe, &letter, 1) == 1 && letter != '\n') {
        line += letter;
    }
    return line;
}

/// The forked process's part. The daemon ends with us however we end, and it holds nothing of ours
/// open: a death test would wait for that.
[[noreturn]] void runDaemon(int output)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::dup2(output, STDOUT_FILENO);
    ::dup2(::open("/dev/null", O_WRONLY), STDERR_FILENO);
    ::close_range(STDERR_FILENO + 1, ~0U, 0);
    ::execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--print-address", nullptr);
    std::_Exit(EXIT_FAILURE);
}

}  // namespace

SessionBus::SessionBus()
{
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe2");
    }
    const FileDescriptor readEnd(ends[0]);
    process_ = ::fork();
    if (process_ == 0) {
        runDaemon(ends[1]);
    }
    ::close(ends[1]);
    address_ = readLine(readEnd.get());
    ::setenv("DBUS_SESSION_BUS_ADDRESS",
             address_.empty() ? "unix:path=/dev/null/none" : address_.c_str(), 1);
}

SessionBus::~SessionBus()
{
    if (process_ > 0) {
        ::kill(process_, SIGTERM);
        ::waitpid(process_, nullptr, 0);
    }
}

}  // namespace tonvale::test
