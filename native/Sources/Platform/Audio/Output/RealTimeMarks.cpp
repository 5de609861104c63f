// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Audio/Output/RealTimeMarks.h"

namespace tonvale {

[[gnu::weak]] void deviceCallbackBegins() noexcept {}
[[gnu::weak]] void deviceCallbackEnds() noexcept {}
[[gnu::weak]] void libraryCallBegins() noexcept {}
[[gnu::weak]] void libraryCallEnds() noexcept {}

}  // namespace tonvale
