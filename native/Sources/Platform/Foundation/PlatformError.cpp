// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/PlatformError.h"

#include <cstring>

namespace tonvale {

PlatformError PlatformError::fromErrno(int errorNumber)
{
    // strerrordesc_np knows every number of this system, takes no lock and never translates.
    const char* description = strerrordesc_np(errorNumber);
    return PlatformError(description != nullptr ? description
                                                : "Unknown error " + std::to_string(errorNumber));
}

}  // namespace tonvale
