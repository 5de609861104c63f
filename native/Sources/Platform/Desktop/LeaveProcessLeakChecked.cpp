// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/LeaveProcess.h"

#include <sanitizer/lsan_interface.h>

#include <cstdlib>

namespace tonvale {

void leaveProcess(int code) noexcept
{
    // Reports what leaked and ends the process as failed if anything did.
    __lsan_do_leak_check();
    std::_Exit(code);
}

}  // namespace tonvale
