// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Support/RealTimeWatch.h"

#include "Platform/Audio/Output/RealTimeMarks.h"

#include <dlfcn.h>
#include <poll.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/types.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cstddef>

namespace {

thread_local int callbackDepth = 0;
thread_local int libraryDepth = 0;
std::atomic<std::uint64_t> forbiddenCount;
std::atomic<std::uint64_t> callbackCount;
std::atomic<std::uint64_t> libraryCount;
std::atomic<const char*> lastForbidden;

void note(const char* name) noexcept
{
    if (callbackDepth > 0 && libraryDepth == 0) {
        ++forbiddenCount;
        lastForbidden = name;
    }
}

/// The C library's function behind ours, which has the same name.
template <typename Function>
Function* real(Function* /*ours*/, std::atomic<void*>& found, const char* name) noexcept
{
    void* function = found;
    if (function == nullptr) {
        function = ::dlsym(RTLD_NEXT, name);
        found = function;
    }
    return reinterpret_cast<Function*>(function);
}

}  // namespace

namespace tonvale {

void deviceCallbackBegins() noexcept
{
    ++callbackDepth;
}

void deviceCallbackEnds() noexcept
{
    --callbackDepth;
    ++callbackCount;
}

void libraryCallBegins() noexcept
{
    ++libraryDepth;
}

void libraryCallEnds() noexcept
{
    --libraryDepth;
    libraryCount += callbackDepth > 0 ? 1 : 0;
}

namespace test {

void RealTimeWatch::reset() noexcept
{
    forbiddenCount = 0;
    callbackCount = 0;
    libraryCount = 0;
    lastForbidden = nullptr;
}

std::uint64_t RealTimeWatch::forbiddenCalls() noexcept
{
    return forbiddenCount;
}

std::string RealTimeWatch::lastForbiddenCall()
{
    const char* const name = lastForbidden;
    return name != nullptr ? name : "";
}

std::uint64_t RealTimeWatch::deviceCallbacks() noexcept
{
    return callbackCount;
}

std::uint64_t RealTimeWatch::libraryCalls() noexcept
{
    return libraryCount;
}

}  // namespace test

}  // namespace tonvale

// The allocator may be called before anything can be looked up, so its own inner names serve.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);

void* malloc(std::size_t size)
{
    note("malloc");
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size)
{
    note("calloc");
    return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size)
{
    note("realloc");
    return __libc_realloc(memory, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    note("aligned_alloc");
    return __libc_memalign(alignment, size);
}

int posix_memalign(void** memory, std::size_t alignment, std::size_t size)
{
    note("posix_memalign");
    *memory = __libc_memalign(alignment, size);
    return *memory != nullptr ? 0 : 12;  // ENOMEM
}

void free(void* memory)
{
    note("free");
    __libc_free(memory);
}

}  // extern "C"

// One of these for each function that locks, waits, or touches a file: the same name and
// parameters, noted, then passed on. sem_post is none of them: it neither locks nor waits, even a
// signal handler may call it, and it is how the device's thread wakes the one that renders.
#define TONVALE_WATCHED(result, name, parameters, arguments, ...)                                  \
    extern "C" result name parameters __VA_ARGS__                                                  \
    {                                                                                              \
        static std::atomic<void*> found;                                                           \
        note(#name);                                                                               \
        return real(&name, found, #name) arguments;                                                \
    }

TONVALE_WATCHED(int, pthread_mutex_lock, (pthread_mutex_t * mutex), (mutex), noexcept)
TONVALE_WATCHED(int, pthread_mutex_trylock, (pthread_mutex_t * mutex), (mutex), noexcept)
TONVALE_WATCHED(int, pthread_rwlock_rdlock, (pthread_rwlock_t * lock), (lock), noexcept)
TONVALE_WATCHED(int, pthread_rwlock_wrlock, (pthread_rwlock_t * lock), (lock), noexcept)
TONVALE_WATCHED(int, pthread_cond_wait, (pthread_cond_t * condition, pthread_mutex_t* mutex),
                (condition, mutex))
TONVALE_WATCHED(int, pthread_cond_timedwait,
                (pthread_cond_t * condition, pthread_mutex_t* mutex, const timespec* end),
                (condition, mutex, end))
TONVALE_WATCHED(int, pthread_cond_signal, (pthread_cond_t * condition), (condition), noexcept)
TONVALE_WATCHED(int, pthread_cond_broadcast, (pthread_cond_t * condition), (condition), noexcept)
TONVALE_WATCHED(int, pthread_join, (pthread_t thread, void** result), (thread, result))
TONVALE_WATCHED(int, sem_wait, (sem_t * semaphore), (semaphore))
TONVALE_WATCHED(int, sem_timedwait, (sem_t * semaphore, const timespec* end), (semaphore, end))
TONVALE_WATCHED(ssize_t, read, (int file, void* bytes, std::size_t count), (file, bytes, count))
TONVALE_WATCHED(ssize_t, write, (int file, const void* bytes, std::size_t count),
                (file, bytes, count))
TONVALE_WATCHED(ssize_t, pread, (int file, void* bytes, std::size_t count, off_t place),
                (file, bytes, count, place))
TONVALE_WATCHED(off_t, lseek, (int file, off_t place, int whence), (file, place, whence), noexcept)
TONVALE_WATCHED(int, close, (int file), (file))
TONVALE_WATCHED(int, poll, (pollfd * files, nfds_t count, int time), (files, count, time))
TONVALE_WATCHED(int, nanosleep, (const timespec* time, timespec* left), (time, left))
TONVALE_WATCHED(int, clock_nanosleep,
                (clockid_t clock, int flags, const timespec* time, timespec* left),
                (clock, flags, time, left))
TONVALE_WATCHED(int, sched_yield, (), (), noexcept)

#undef TONVALE_WATCHED

// These take a further argument at times, which is always passed on.
extern "C" int open(const char* path, int flags, ...)
{
    static std::atomic<void*> found;
    note("open");
    __builtin_va_list more;
    __builtin_va_start(more, flags);
    const unsigned mode = __builtin_va_arg(more, unsigned);
    __builtin_va_end(more);
    return real(&open, found, "open")(path, flags, mode);
}

extern "C" long syscall(long number, ...) noexcept
{
    static std::atomic<void*> found;
    note("syscall");  // waits of the C++ library's atomics and semaphores
    __builtin_va_list more;
    __builtin_va_start(more, number);
    long a[6];
    for (long& argument : a) {
        argument = __builtin_va_arg(more, long);
    }
    __builtin_va_end(more);
    return real(&syscall, found, "syscall")(number, a[0], a[1], a[2], a[3], a[4], a[5]);
}
