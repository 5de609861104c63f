// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/Decoding/FFmpeg.h"

#include <initializer_list>
#include <string_view>

namespace tonvale {

class LocalInput;

/// Recognises a file's container by its bytes, with its name as a hint. Only containers that hold
/// music themselves are known: nothing that names other files or addresses, and no text.
/// @error PlatformError: nothing known, or the disk fails
[[nodiscard]] const AVInputFormat& recogniseFormat(LocalInput& input);

/// The names of those containers, for the library.
[[nodiscard]] const char* containersOfMusic() noexcept;

/// Whether `name`, or one of `names`, is one of those a format goes by.
[[nodiscard]] bool isNamed(const AVInputFormat& format, std::string_view name);
[[nodiscard]] bool isOneOf(const AVInputFormat& format,
                           std::initializer_list<std::string_view> names);

}  // namespace tonvale
