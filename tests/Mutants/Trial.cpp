// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Mutants/Trial.h"

#include "Platform/Foundation/FileDescriptor.h"

#include <poll.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <exception>
#include <fstream>
#include <new>
#include <sstream>
#include <system_error>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>

/// What was freed is kept back for a while, and counts as memory: less of it than usual.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options()
{
    return "quarantine_size_mb=16:max_allocation_size_mb=512";
}
#endif

namespace tonvale::test {

namespace {

constexpr rlim_t mostProcessorSeconds = 10;
constexpr int mostMilliseconds = 300000;  // for a busy machine; only waiting takes so long
constexpr rlim_t mostBytes = rlim_t{512} << 20U;
constexpr rlim_t largestFile = rlim_t{512} << 20U;

/// What the trial's process leaves behind, in memory that both processes have.
struct Record {
    Outcome outcome;
    std::array<char, 1000> words;
};

class SharedRecord {
public:
    SharedRecord()
        : memory_(::mmap(nullptr, sizeof(Record), PROT_READ | PROT_WRITE,
                         MAP_SHARED | MAP_ANONYMOUS, -1, 0))
    {
        if (memory_ == MAP_FAILED) {
            throw std::system_error(errno, std::generic_category(), "mmap");
        }
    }
    ~SharedRecord() { ::munmap(memory_, sizeof(Record)); }
    SharedRecord(const SharedRecord&) = delete;
    SharedRecord& operator=(const SharedRecord&) = delete;

    void set(const Ending& ending)
    {
        Record& record = *static_cast<Record*>(memory_);
        record.outcome = ending.outcome;
        record.words = {};
        ending.words.copy(record.words.data(), record.words.size() - 1);
    }
    [[nodiscard]] Ending get() const
    {
        const Record& record = *static_cast<const Record*>(memory_);
        return {record.outcome, record.words.data()};
    }

private:
    void* memory_;
};

void limit(__rlimit_resource_t resource, rlim_t most)
{
    const rlimit limits{most, most};
    if (::setrlimit(resource, &limits) != 0) {
        throw std::system_error(errno, std::generic_category(), "setrlimit");
    }
}

#if defined(__SANITIZE_ADDRESS__)
void limitMemory() {}
#else
/// The bytes of memory that this process may write to by now, as the limit counts them.
rlim_t dataBytes()
{
    std::ifstream file("/proc/self/statm");
    std::array<rlim_t, 6> pages{};
    for (rlim_t& count : pages) {
        file >> count;
    }
    return pages[5] * static_cast<rlim_t>(::getpagesize());
}

void limitMemory()
{
    limit(RLIMIT_DATA, dataBytes() + mostBytes);
}
#endif

void setLimits()
{
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_CPU, mostProcessorSeconds);
    limit(RLIMIT_FSIZE, largestFile);
    limitMemory();
}

bool hasLeaked()
{
#if defined(__SANITIZE_ADDRESS__)
    return __lsan_do_recoverable_leak_check() != 0;
#else
    return false;
#endif
}

Ending endingOf(const std::function<Ending()>& trial)
{
    try {
        return trial();
    } catch (const std::bad_alloc&) {
        return {Outcome::unfinished, "more memory than the limit"};
    } catch (const std::exception& error) {
        return {Outcome::unfinished, std::string("an exception: ") + error.what()};
    }
}

/// The trial's process: nothing of the parent's is taken apart at its end.
[[noreturn]] void tryAndExit(const std::function<Ending()>& trial, const FileDescriptor& printed,
                             SharedRecord& record)
{
    ::dup2(printed.get(), STDOUT_FILENO);
    ::dup2(printed.get(), STDERR_FILENO);
    setLimits();
    const Ending ending = endingOf(trial);
    record.set(hasLeaked() ? Ending{Outcome::unfinished, "a leak"} : ending);
    ::_exit(0);
}

void killIfItHangs(pid_t process)
{
    // The C library's own function cannot be called from C++ before its version 2.37.
    const FileDescriptor handle(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
    pollfd ended{handle.get(), POLLIN, 0};
    if (::poll(&ended, 1, mostMilliseconds) == 0) {
        ::kill(process, SIGKILL);
    }
}

std::string contentOf(const FileDescriptor& file)
{
    std::string text(static_cast<std::size_t>(::lseek(file.get(), 0, SEEK_END)), '\0');
    const ssize_t count = ::pread(file.get(), text.data(), text.size(), 0);
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return text;
}

double secondsOf(const timeval& time)
{
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}

/// How it went by all that is known of the process.
Ending judge(const Ending& told, int status, const rusage& usage, const std::string& printed)
{
    if (WIFSIGNALED(status)) {
        return {Outcome::unfinished,
                std::string("signal: ") + ::strsignal(WTERMSIG(status)) + "\n" + printed};
    }
    if (WEXITSTATUS(status) != 0 || !printed.empty()) {
        return {Outcome::unfinished, told.words + "\n" + printed};
    }
    if (static_cast<rlim_t>(usage.ru_maxrss) * 1024 > mostBytes) {
        return {Outcome::unfinished, "more resident memory than the limit"};
    }
    return told;
}

}  // namespace

TrialResult runTrial(const std::function<Ending()>& trial)
{
    const FileDescriptor printed(::memfd_create("printed", MFD_CLOEXEC));
    SharedRecord record;
    const auto start = std::chrono::steady_clock::now();
    const pid_t process = ::fork();
    if (process == 0) {
        tryAndExit(trial, printed, record);
    }
    if (process < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
    killIfItHangs(process);
    int status = 0;
    rusage usage{};
    ::wait4(process, &status, 0, &usage);
    const std::chrono::duration<double> waited = std::chrono::steady_clock::now() - start;
    return {.ending = judge(record.get(), status, usage, contentOf(printed)),
            .processorSeconds = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime),
            .seconds = waited.count(),
            .megabytes = static_cast<double>(usage.ru_maxrss) / 1024};
}

}  // namespace tonvale::test
