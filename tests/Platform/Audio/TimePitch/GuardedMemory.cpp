// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "GuardedMemory.h"

namespace {

thread_local bool isCounting = false;
thread_local int allocations = 0;

#if defined(__SANITIZE_ADDRESS__)
constexpr std::size_t guardSize = 0;
#else
constexpr std::size_t guardSize = 64;  // bytes behind the block; before it are 24 at least
#endif
constexpr unsigned char guard = 0xFF;
constexpr std::size_t usualAlignment = alignof(std::max_align_t);

/// Bytes before a block: its size and a guard.
std::size_t headSize(std::size_t alignment)
{
    return std::max(alignment, 2 * usualAlignment);
}

void* allocate(std::size_t size, std::size_t alignment)
{
    allocations += isCounting ? 1 : 0;
    const std::size_t head = headSize(alignment);
    const std::size_t whole = (head + size + guardSize + alignment - 1) / alignment * alignment;
    auto* memory = static_cast<unsigned char*>(std::aligned_alloc(alignment, whole));
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    if (guardSize > 0) {
        std::fill_n(memory, whole, guard);
    }
    std::memcpy(memory, &size, sizeof(size));
    return memory + head;
}

void release(void* block, std::size_t alignment)
{
    if (block == nullptr) {
        return;
    }
    const std::size_t head = headSize(alignment);
    auto* memory = static_cast<unsigned char*>(block) - head;
    std::size_t size = 0;
    std::memcpy(&size, memory, sizeof(size));
    const auto isGuard = [](unsigned char byte) { return byte == guard; };
    if (guardSize > 0
        && (!std::all_of(memory + sizeof(size), memory + head, isGuard)
            || !std::all_of(memory + head + size, memory + head + size + guardSize, isGuard))) {
        std::fputs("Something wrote beyond the memory it had asked for.\n", stderr);
        std::abort();
    }
    std::free(memory);
}

}  // namespace

void* operator new(std::size_t size)
{
    return allocate(size, usualAlignment);
}
void* operator new(std::size_t size, std::align_val_t alignment)
{
    return allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* block) noexcept
{
    release(block, usualAlignment);
}
void operator delete(void* block, std::size_t) noexcept
{
    release(block, usualAlignment);
}
void operator delete(void* block, std::align_val_t alignment) noexcept
{
    release(block, static_cast<std::size_t>(alignment));
}
void operator delete(void* block, std::size_t, std::align_val_t alignment) noexcept
{
    release(block, static_cast<std::size_t>(alignment));
}

namespace tonvale::timepitch::test {

AllocationCounter::AllocationCounter() noexcept
{
    allocations = 0;
    isCounting = true;
}

AllocationCounter::~AllocationCounter()
{
    isCounting = false;
}

int AllocationCounter::count() const noexcept
{
    return allocations;
}

}  // namespace tonvale::timepitch::test
