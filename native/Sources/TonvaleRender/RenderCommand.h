// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "TonvaleRender/CommandLine.h"

namespace tonvale {

/// Prints what listening to the song tells of its key and tempo, in two lines.
/// @error LocalizedError with a whole sentence for the user
void runDetection(const RenderRequest& request);

/// Renders one song and tells where it was saved; where the request says so, finds its key first.
/// An interrupted render removes its unfinished output and ends the process by the signal.
/// @error LocalizedError with a whole sentence for the user
void runRender(const RenderRequest& request);

}  // namespace tonvale
