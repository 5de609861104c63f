// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QIcon>

#include <filesystem>

namespace tonvale {

/// Every image in the file, so that each size on screen is served by the drawing made for it.
/// @return a null icon where the file holds no image that can be read
/// @thread CONTROL
[[nodiscard]] QIcon imageFile(const std::filesystem::path& file);

}  // namespace tonvale
