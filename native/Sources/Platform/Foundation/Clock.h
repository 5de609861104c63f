// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>

namespace tonvale {

/// The time that passes: never set back, never jumping with the calendar.
/// @thread ANY
namespace Clock {

using Instant = std::chrono::steady_clock::time_point;

[[nodiscard]] Instant now() noexcept;

/// For tests: makes now() answer what `source` does, until called with null.
void replace(Instant (*source)()) noexcept;

}  // namespace Clock

}  // namespace tonvale
