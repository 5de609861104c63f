// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

// A library to be loaded before a program (LD_PRELOAD), in whose hands one file gets faulty. The
// environment says which, and what happens:
//   TONVALE_FAULT_FILE   its last path component
//   TONVALE_FAULT_LOG    a file that gets a line for each call on it: "open", "write" ...
//   TONVALE_FAULT_AT     the number of the call that something happens to, from 1 on
//   TONVALE_FAULT_WHAT   what: an errno; or "kill", the program ends just before the call; or
//                        "trickle", at every call: interrupted first, then done a little at a time

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t trickle = 1000;  // bytes

std::string_view variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string_view() : std::string_view(value);
}

std::atomic<int> callCount = 0;
std::array<std::atomic<bool>, 1024> isWatched;

bool isFaultyFile(const char* path)
{
    const std::string_view name =
        std::string_view(path).substr(std::string_view(path).rfind('/') + 1);  // npos + 1 is 0
    return !name.empty() && name == variable("TONVALE_FAULT_FILE");
}

bool isFaultyFile(int descriptor)
{
    return descriptor >= 0 && static_cast<std::size_t>(descriptor) < isWatched.size()
           && isWatched[static_cast<std::size_t>(descriptor)];
}

void watch(long descriptor, bool isFaulty)
{
    if (descriptor >= 0 && static_cast<std::size_t>(descriptor) < isWatched.size()) {
        isWatched[static_cast<std::size_t>(descriptor)] = isFaulty;
    }
}

void log(std::string_view call)
{
    const std::string file(variable("TONVALE_FAULT_LOG"));
    if (file.empty()) {
        return;
    }
    const std::string line = std::string(call) + "\n";
    const long log = ::syscall(SYS_openat, AT_FDCWD, file.c_str(),
                               O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    ::syscall(SYS_write, log, line.data(), line.size());
    ::syscall(SYS_close, log);
}

/// Counts a call on the file. @return the errno that it fails with, or 0
int faultOf(std::string_view call)
{
    log(call);
    const std::string_view what = variable("TONVALE_FAULT_WHAT");
    const int number = ++callCount;
    if (what == "trickle") {
        return call != "close" && number % 2 == 1 ? EINTR : 0;
    }
    if (std::to_string(number) != variable("TONVALE_FAULT_AT")) {
        return 0;
    }
    if (what == "kill") {
        ::kill(::getpid(), SIGKILL);
    }
    return std::atoi(std::string(what).c_str());
}

std::size_t boundedCount(std::size_t count)
{
    return variable("TONVALE_FAULT_WHAT") == "trickle" ? std::min(count, trickle) : count;
}

int failure(int errorNumber)
{
    errno = errorNumber;
    return -1;
}

int openFile(const char* path, int flags, mode_t mode)
{
    const bool isFaulty = isFaultyFile(path);
    if (isFaulty) {
        const int fault = faultOf("open");
        if (fault != 0 && fault != EINTR) {
            return failure(fault);
        }
    }
    const long descriptor = ::syscall(SYS_openat, AT_FDCWD, path, flags, mode);
    watch(descriptor, isFaulty);
    return static_cast<int>(descriptor);
}

ssize_t readFile(int descriptor, void* data, std::size_t count, off_t offset)
{
    if (isFaultyFile(descriptor)) {
        if (const int fault = faultOf("read"); fault != 0) {
            return failure(fault);
        }
        count = boundedCount(count);
    }
    return ::syscall(SYS_pread64, descriptor, data, count, offset);
}

mode_t modeFrom(int flags, std::va_list arguments)
{
    return (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeFrom(flags, arguments);
    va_end(arguments);
    return openFile(path, flags, mode);
}

int open64(const char* path, int flags, ...)
{
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeFrom(flags, arguments);
    va_end(arguments);
    return openFile(path, flags, mode);
}

ssize_t pread(int descriptor, void* data, std::size_t count, off_t offset)
{
    return readFile(descriptor, data, count, offset);
}

ssize_t pread64(int descriptor, void* data, std::size_t count, off64_t offset)
{
    return readFile(descriptor, data, count, offset);
}

ssize_t write(int descriptor, const void* data, std::size_t count)
{
    if (isFaultyFile(descriptor)) {
        if (const int fault = faultOf("write"); fault != 0) {
            return failure(fault);
        }
        count = boundedCount(count);
    }
    return ::syscall(SYS_write, descriptor, data, count);
}

int close(int descriptor)
{
    const bool isFaulty = isFaultyFile(descriptor);
    const int fault = isFaulty ? faultOf("close") : 0;
    watch(descriptor, false);
    const long result = ::syscall(SYS_close, descriptor);  // Linux closes it whatever it reports
    return fault != 0 ? failure(fault) : static_cast<int>(result);
}

int unlink(const char* path) noexcept
{
    const int fault = isFaultyFile(path) ? faultOf("unlink") : 0;
    return fault != 0 && fault != EINTR
               ? failure(fault)
               : static_cast<int>(::syscall(SYS_unlinkat, AT_FDCWD, path, 0));
}

}  // extern "C"
