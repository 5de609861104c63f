// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Mutants/Trial.h"

#include <filesystem>

namespace tonvale::test {

/// Opens the song, reads it through and here and there, and renders it into a file beside it.
[[nodiscard]] Ending readAndRender(const std::filesystem::path& song);

/// What a user does with a song: loads it, plays it from several places, changes the key, saves.
/// @thread the main one of a process without an application object
[[nodiscard]] Ending goThroughModel(const std::filesystem::path& song);

}  // namespace tonvale::test
