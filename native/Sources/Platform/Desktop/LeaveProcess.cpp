// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Desktop/LeaveProcess.h"

#include <cstdlib>

namespace tonvale {

void leaveProcess(int code) noexcept
{
    std::_Exit(code);
}

}  // namespace tonvale
