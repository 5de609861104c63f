// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tonvale {

/// A text from outside in quotes for a message of one line: control characters, which a file name
/// or an argument may hold, become question marks, so that no text can garble the terminal.
/// @param text  UTF-8 for the most part
[[nodiscard]] std::string quotedText(std::string_view text);

[[nodiscard]] inline std::string quotedName(const std::filesystem::path& url)
{
    return quotedText(url.native());
}

}  // namespace tonvale
