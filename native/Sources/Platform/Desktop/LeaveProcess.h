// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

namespace tonvale {

/// Ends the process at once: nothing waits for threads that still render or for helpers that still
/// run, and no destructor of a library runs under them. Builds that check for leaks or measure
/// coverage link a variant that first does so.
/// @thread CONTROL
[[noreturn]] void leaveProcess(int code) noexcept;

}  // namespace tonvale
