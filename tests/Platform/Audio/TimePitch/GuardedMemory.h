// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

/// What `new` gives in this program: every block has a guard on either side, and guards and new
/// memory are full of ones, which as floating point are no number. So who reads beyond an array
/// spoils his result, and who writes there ends the program when the block is given back. The
/// address sanitizer watches closer and is left alone.
namespace tonvale::timepitch::test {

/// Counts what the calling thread allocates while it lives; one at a time.
class AllocationCounter {
public:
    AllocationCounter() noexcept;
    ~AllocationCounter();
    AllocationCounter(const AllocationCounter&) = delete;
    AllocationCounter& operator=(const AllocationCounter&) = delete;

    [[nodiscard]] int count() const noexcept;
};

}  // namespace tonvale::timepitch::test
