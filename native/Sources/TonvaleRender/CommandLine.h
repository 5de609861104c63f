// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "TonvaleRender/RenderRequest.h"

#include <span>

namespace tonvale {

/// What the command line asks for.
struct CommandLine {
    enum class Action { render, detect, showHelp, showVersion };

    Action action = Action::render;
    RenderRequest request;  ///< for Action::render; for Action::detect its inputs, jobs and isQuiet
};

/// @param arguments  the program's name first, as main() gets them
/// @error UsageError
[[nodiscard]] CommandLine parseCommandLine(std::span<char* const> arguments);

}  // namespace tonvale
