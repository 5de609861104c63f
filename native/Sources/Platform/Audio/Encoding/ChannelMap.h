// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFileSettings.h"

#include <vector>

namespace tonvale {

/// Where the loudspeakers of a file's channels stand, in libsndfile's numbers, one for each
/// channel. Empty when that cannot be told, or need not: everybody knows where one and two stand.
/// @thread ANY
[[nodiscard]] std::vector<int> channelMapFor(const AudioFileSettings& settings);

}  // namespace tonvale
