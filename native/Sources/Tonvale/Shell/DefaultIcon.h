// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QIcon>

namespace tonvale {

/// The application's icon as it is built into the program.
/// @thread CONTROL
[[nodiscard]] QIcon defaultIcon();

}  // namespace tonvale
