// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Platform/Foundation/Precondition.h"
#include "Tonvale/EssentiaKeyDetector.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace {

/// The message of a failed helper, whatever it is, is UTF-8.
void readFailure(std::string_view output)
{
    using namespace tonvale::EssentiaKeyDetector::detail;
    const std::string text = decodeUtf8(output);
    tonvale::precondition(text.empty() || text == output);
    if (const auto message = parseError(text)) {
        tonvale::precondition(decodeUtf8(*message) == *message);
    }
}

/// An answer is one of the keys and two lines that can be shown.
void readAnswer(std::string_view output)
{
    using namespace tonvale;
    try {
        const DetectedSongDetails details = EssentiaKeyDetector::detail::parseDetails(output);
        const auto [key, tempo] = details.displayLines();
        precondition(key.starts_with("Key  : ") && key.ends_with("%"));
        precondition(tempo.starts_with("Tempo  : "));
    } catch (const LocalizedError& error) {
        precondition(!error.errorDescription().empty());
    }
}

}  // namespace

/// What a detection helper wrote, taken for the answer of one that succeeded and of one that
/// failed.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view output(reinterpret_cast<const char*>(data), size);
    readFailure(output);
    readAnswer(output);
    return 0;
}
