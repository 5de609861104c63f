// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/TerminalText.h"

#include <cstddef>

namespace tonvale {

namespace {

unsigned char byteAt(std::string_view text, std::size_t index)
{
    return index < text.size() ? static_cast<unsigned char>(text[index]) : '\0';
}

/// How many bytes from `index` on make up one control character; 0 for any other.
std::size_t controlLength(std::string_view text, std::size_t index)
{
    const unsigned char byte = byteAt(text, index);
    if (byte < 0x20 || byte == 0x7F) {
        return 1;
    }
    // U+0080 to U+009F: the second set of controls, which some terminals obey.
    const unsigned char second = byteAt(text, index + 1);
    return byte == 0xC2 && second >= 0x80 && second <= 0x9F ? 2 : 0;
}

}  // namespace

std::string quotedText(std::string_view text)
{
    std::string result = "\"";
    for (std::size_t index = 0; index < text.size();) {
        const std::size_t length = controlLength(text, index);
        result += length > 0 ? '?' : text[index];
        index += length > 0 ? length : 1;
    }
    return result + "\"";
}

}  // namespace tonvale
