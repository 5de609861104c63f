// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <algorithm>
#include <filesystem>
#include <string>

namespace tonvale {

/// A file's name in quotes for a message of one line: control characters, which a name may hold,
/// become question marks, so that no name can garble the terminal.
[[nodiscard]] inline std::string quotedName(const std::filesystem::path& url)
{
    std::string name = url.string();
    std::ranges::replace_if(
        name,
        [](char letter) {
            const auto code = static_cast<unsigned char>(letter);
            return code < 0x20 || code == 0x7F;
        },
        '?');
    return "\"" + name + "\"";
}

}  // namespace tonvale
