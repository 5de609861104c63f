// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/LeaveProcess.h"

#include <cstdlib>

// The compiler's coverage run-time; it has no header.
extern "C" void __gcov_dump();

namespace tonvale {

void leaveProcess(int code) noexcept
{
    __gcov_dump();
    std::_Exit(code);
}

}  // namespace tonvale
