// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Tonvale/Keys/MusicKey.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace tonvale {

/// One song to render.
struct RenderRequest {
    std::filesystem::path input;
    std::optional<std::filesystem::path> output;  ///< none: beside the input, named after the shift
    int cents = 0;                                ///< -600 ... 600; unless it is to be detected
    bool detectsSourceKey = false;                ///< the song's key is found by listening to it
    std::optional<MusicKey> targetKey;            ///< where the shift was given by keys
    bool countsSemitones = false;                 ///< the shift was given by --semitones
    bool replacesOutput = false;
    bool isQuiet = false;
};

/// What the command line asks for.
struct CommandLine {
    enum class Action { render, detect, showHelp, showVersion };

    Action action = Action::render;
    RenderRequest request;  ///< for Action::render; for Action::detect its input
};

/// @param arguments  the program's name first, as main() gets them
/// @error UsageError
[[nodiscard]] CommandLine parseCommandLine(std::span<char* const> arguments);

[[nodiscard]] std::string helpText();
[[nodiscard]] std::string versionText();

}  // namespace tonvale
