// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>

namespace tonvale::test {

/// Runs the event loop until `condition` holds. @return false when it does not within 30 seconds
[[nodiscard]] bool spinUntil(const std::function<bool()>& condition);

/// Runs all that is queued at the moment.
void runQueuedCalls();

}  // namespace tonvale::test
