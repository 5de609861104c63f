// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QUrl>

#include <filesystem>
#include <optional>

namespace tonvale {

/// The path that a location of the desktop stands for, byte for byte: "#" and "%" in names, and
/// names that are no text, survive.
/// @return none unless it is a file of this machine
/// @thread ANY
[[nodiscard]] std::optional<std::filesystem::path> fileLocation(const QUrl& url);

/// The same of a location in its written form: "file:///music/100%25.mp3".
[[nodiscard]] std::optional<std::filesystem::path> fileLocation(const QByteArray& written);

}  // namespace tonvale
