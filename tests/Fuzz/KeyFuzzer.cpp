// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/Precondition.h"
#include "Tonvale/Keys/MusicKey.h"
#include "TonvaleRender/KeyParser.h"
#include "TonvaleRender/UsageError.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace {

using namespace tonvale;

std::optional<MusicKey> keyTyped(std::string_view text)
{
    try {
        return parseKey(text);
    } catch (const UsageError& error) {
        precondition(!error.errorDescription().empty());
        return std::nullopt;
    }
}

}  // namespace

/// A text as the key of a command line, as a name of the window's lists and as a detector's words.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (const auto key = keyTyped(text)) {
        precondition(keyTyped(key->name()) == key && keyTyped(key->rawValue()) == key);
    }
    if (const auto key = MusicKey::fromRawValue(text)) {
        precondition(key->rawValue() == text && keyTyped(text) == key);
    }
    const std::size_t blank = text.find(' ');
    const std::string_view note = text.substr(0, blank);
    const std::string_view scale = blank < text.size() ? text.substr(blank + 1) : "";
    if (const auto key = MusicKey::fromEssentiaKey(note, scale)) {
        precondition(keyTyped(note)->pitchClass() == key->pitchClass());
    }
    return 0;
}
