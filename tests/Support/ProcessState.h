// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <map>
#include <string>

namespace tonvale::test {

/// Looks at `condition` again and again. @return whether it came true within 30 seconds
[[nodiscard]] bool eventually(const std::function<bool()>& condition);

/// Whether the thread or single-threaded process `task` is inside this system call right now.
[[nodiscard]] bool isInSystemCall(pid_t task, long number);

/// Whether the process is gone without a trace: ended, and waited for by its parent.
[[nodiscard]] bool isReaped(pid_t process);

/// Our own open descriptors, with the file each stands for.
[[nodiscard]] std::map<int, std::string> openDescriptors();

/// Our own threads, the caller's included.
[[nodiscard]] std::size_t threadCount();

/// What our own threads have used of the processors, in seconds.
[[nodiscard]] double processorSeconds();

/// What is allocated and not freed, as the C library counts it: with what its threads keep for
/// themselves, unless heapIsCountedExactly().
[[nodiscard]] std::size_t heapBytesInUse();
/// Whether GLIBC_TUNABLES forbids that. Not with a sanitizer, which has an allocator of its own.
[[nodiscard]] bool heapIsCountedExactly();

}  // namespace tonvale::test
