// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "TonvaleRender/RenderRequest.h"

namespace tonvale {

/// Prints what listening to the songs tells of their keys and tempos, two lines a song, in the
/// order in which they were named. A song that fails is told of and does not stop the others.
/// @return whether none failed
/// @error UsageError before anything was done
[[nodiscard]] bool runDetection(const RenderRequest& request);

}  // namespace tonvale
