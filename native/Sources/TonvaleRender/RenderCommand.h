// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "TonvaleRender/RenderRequest.h"

namespace tonvale {

/// Renders the songs and tells where they were saved; where the request says so, finds their keys
/// first. What fails is told of and does not stop the rest. An interrupted command removes its
/// unfinished outputs and ends the process by the signal.
/// @return whether everything was saved
/// @error UsageError, LocalizedError with a whole sentence, before anything was written
[[nodiscard]] bool runRender(const RenderRequest& request);

}  // namespace tonvale
