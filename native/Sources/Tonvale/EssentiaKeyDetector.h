// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Foundation/LocalizedError.h"
#include "Tonvale/DetectedSongDetails.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tonvale {

/// What a detection can fail of by itself; every other failure is the platform's.
class EssentiaKeyDetectorError : public LocalizedError {
public:
    /// The two words exactly as the helper printed them.
    [[nodiscard]] static EssentiaKeyDetectorError unsupportedKey(std::string key,
                                                                 std::string scale);
    /// The helper's own message, possibly empty.
    [[nodiscard]] static EssentiaKeyDetectorError helperFailed(std::string message);
    [[nodiscard]] static EssentiaKeyDetectorError missingResources();
    [[nodiscard]] static EssentiaKeyDetectorError unreadableOutput();

    [[nodiscard]] std::string errorDescription() const override;

    friend bool operator==(const EssentiaKeyDetectorError& left,
                           const EssentiaKeyDetectorError& right) noexcept
    {
        return left.which_ == right.which_ && left.first_ == right.first_
               && left.second_ == right.second_;
    }

private:
    enum class Case { unsupportedKey, helperFailed, missingResources, unreadableOutput };

    explicit EssentiaKeyDetectorError(Case which, std::string first = {}, std::string second = {});

    Case which_;
    std::string first_;   // key word, or message
    std::string second_;  // scale word
};

/// Asks an external helper for a song's key and tempo.
namespace EssentiaKeyDetector {

/// Runs the helper on the song and blocks until it has ended, however long that takes. Calls are
/// independent of each other and may run side by side.
/// @error EssentiaKeyDetectorError; PlatformError where the helper cannot be started, and with the
///        parser's words where its answer is not well-formed JSON
/// @thread WORKER
[[nodiscard]] DetectedSongDetails detectSongDetails(const std::filesystem::path& forFile);

/// The steps of a detection, declared for the tests; nobody else calls them.
namespace detail {

/// Where this detector's source file lay when the program was built.
[[nodiscard]] std::filesystem::path sourceFile();

/// The directory "KeyDetection" that holds the helper: among the application's resources, else in
/// the source tree that `source` belongs to.
/// @error EssentiaKeyDetectorError::missingResources
[[nodiscard]] std::filesystem::path keyDetectionResourceRoot(
    const std::optional<std::filesystem::path>& resources, const std::filesystem::path& source);

/// The text that `bytes` are in UTF-8; empty where they are not valid.
[[nodiscard]] std::string decodeUtf8(std::string_view bytes);

/// The message of a failed helper; none unless `from` is a JSON object with a string "error".
[[nodiscard]] std::optional<std::string> parseError(std::string_view from);

/// The answer of a helper that succeeded.
/// @error as detectSongDetails
[[nodiscard]] DetectedSongDetails parseDetails(std::string_view from);

}  // namespace detail

}  // namespace EssentiaKeyDetector

}  // namespace tonvale
