// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>

namespace tonvale::timepitch {

/// A zeroed block of plain values whose size is fixed at construction.
///
/// It differs from std::vector in two ways the engine needs: the memory starts on a cache line
/// (for the vector units and the FFT) and indices are signed, as bins and frames may be counted
/// backwards from a reference.
/// @thread ANY; constructing allocates, nothing else does
template <class Value>
class Array {
    static_assert(std::is_trivially_copyable_v<Value>);

public:
    Array() = default;

    explicit Array(std::ptrdiff_t count) : values_(allocate(count)), count_(count) { clear(); }

    [[nodiscard]] std::ptrdiff_t size() const noexcept { return count_; }
    [[nodiscard]] Value* data() noexcept { return values_.get(); }
    [[nodiscard]] const Value* data() const noexcept { return values_.get(); }
    [[nodiscard]] Value& operator[](std::ptrdiff_t index) noexcept { return values_.get()[index]; }
    [[nodiscard]] const Value& operator[](std::ptrdiff_t index) const noexcept
    {
        return values_.get()[index];
    }
    [[nodiscard]] Value* begin() noexcept { return data(); }
    [[nodiscard]] Value* end() noexcept { return data() + count_; }
    [[nodiscard]] const Value* begin() const noexcept { return data(); }
    [[nodiscard]] const Value* end() const noexcept { return data() + count_; }

    void fill(Value value) noexcept { std::fill(begin(), end(), value); }
    void clear() noexcept { fill(Value{}); }

private:
    static constexpr std::align_val_t alignment{64};

    struct Deleter {
        void operator()(Value* values) const noexcept { ::operator delete(values, alignment); }
    };
    using Storage = std::unique_ptr<Value, Deleter>;

    static Storage allocate(std::ptrdiff_t count)
    {
        const std::size_t bytes = static_cast<std::size_t>(count) * sizeof(Value);
        return Storage(static_cast<Value*>(::operator new(bytes, alignment)));
    }

    Storage values_;
    std::ptrdiff_t count_ = 0;
};

}  // namespace tonvale::timepitch
