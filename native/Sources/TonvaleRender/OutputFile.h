// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "TonvaleRender/CommandLine.h"

#include <filesystem>

namespace tonvale {

/// Where the request's result goes: as asked, or beside the song under a name that tells the key
/// ("Song - Key of Eb.wav") or the shift ("Song (+3 semitones).wav").
[[nodiscard]] std::filesystem::path outputFor(const RenderRequest& request);

/// Makes sure that writing `output` can harm nothing, before anything is touched: its extension
/// names a container, its folder is there, it is not the input, no device, and no file that the
/// user did not allow to replace.
/// @error LocalizedError with a whole sentence
void checkOutput(const std::filesystem::path& output, const RenderRequest& request);

}  // namespace tonvale
