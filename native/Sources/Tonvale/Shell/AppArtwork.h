// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Foundation/Bundle.h"

#include <QIcon>

#include <filesystem>

namespace tonvale::AppArtwork {

/// The application's icon, looked for anew at each call; never null. The first of these that yields
/// an image: "Tonvale" among the application's resources, Resources/Tonvale.icns of the source tree
/// that the program was built from, the application's current icon.
/// @thread CONTROL
[[nodiscard]] QIcon icon();

namespace detail {

/// The same for other places than the program's own.
[[nodiscard]] QIcon icon(const Bundle& bundle, const std::filesystem::path& sourceFile);

}  // namespace detail

}  // namespace tonvale::AppArtwork
