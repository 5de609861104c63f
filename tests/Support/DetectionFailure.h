// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Tonvale/EssentiaKeyDetector.h"

#include <filesystem>
#include <ostream>
#include <stdexcept>

namespace tonvale {

/// Lets a failed comparison show the sentence.
inline void PrintTo(const EssentiaKeyDetectorError& error, std::ostream* stream)
{
    *stream << error.errorDescription();
}

namespace test {

/// The error of type E that a detection ends with.
template <class E>
E detectionFailure(const std::filesystem::path& file)
{
    try {
        static_cast<void>(EssentiaKeyDetector::detectSongDetails(file));
    } catch (const E& error) {
        return error;
    }
    throw std::logic_error("the detection succeeded");
}

}  // namespace test

}  // namespace tonvale
