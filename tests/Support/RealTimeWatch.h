// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstdint>
#include <string>

namespace tonvale::test {

/// Watches every thread inside a callback of the sound device (DeviceCallback), but not inside of
/// what is marked as the sound library's own (LibraryCall): allocations, locks, and calls that can
/// wait or that touch a file. A program that links tonvale_real_time_watch has its functions in
/// front of the C library's; it cannot be built with a sanitizer, which does the same.
class RealTimeWatch {
public:
    /// Forgets what was counted.
    static void reset() noexcept;

    /// How many forbidden calls there were since.
    [[nodiscard]] static std::uint64_t forbiddenCalls() noexcept;
    /// The last one's name, for messages; empty without one.
    [[nodiscard]] static std::string lastForbiddenCall();

    /// How many callbacks, and calls into the library inside of them, ended since: a count of 0
    /// forbidden calls means something only if these are not 0.
    [[nodiscard]] static std::uint64_t deviceCallbacks() noexcept;
    [[nodiscard]] static std::uint64_t libraryCalls() noexcept;
};

}  // namespace tonvale::test
