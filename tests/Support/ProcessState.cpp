// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/ProcessState.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/resource.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <thread>

namespace tonvale::test {

bool eventually(const std::function<bool()>& condition)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

bool isInSystemCall(pid_t task, long number)
{
    std::ifstream file("/proc/" + std::to_string(task) + "/syscall");
    std::string first;  // a number while inside a system call, else "running"
    file >> first;
    return first == std::to_string(number);
}

bool isReaped(pid_t process)
{
    return ::kill(process, 0) != 0 && errno == ESRCH;
}

std::map<int, std::string> openDescriptors()
{
    std::map<int, std::string> descriptors;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        const std::filesystem::path file = std::filesystem::read_symlink(entry.path(), error);
        descriptors[std::stoi(entry.path().filename())] = file.string();
    }
    // The iteration's own descriptor was listed too and is closed by now.
    std::erase_if(descriptors, [](const auto& item) { return ::fcntl(item.first, F_GETFD) < 0; });
    return descriptors;
}

std::size_t threadCount()
{
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

double processorSeconds()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

std::size_t heapBytesInUse()
{
    const auto usage = ::mallinfo2();
    return usage.uordblks + usage.hblkhd;
}

bool heapIsCountedExactly()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return false;
#else
    const char* const tunables = std::getenv("GLIBC_TUNABLES");
    return tunables != nullptr && std::string(tunables) == "glibc.malloc.tcache_count=0";
#endif
}

}  // namespace tonvale::test
