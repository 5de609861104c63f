// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/Shell/AppDelegate.h"

namespace tonvale {

bool AppDelegate::applicationShouldTerminateAfterLastWindowClosed() const noexcept
{
    return true;
}

}  // namespace tonvale
