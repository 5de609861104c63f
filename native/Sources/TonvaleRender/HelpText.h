// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <string>

namespace tonvale {

[[nodiscard]] std::string helpText();
[[nodiscard]] std::string versionText();

}  // namespace tonvale
