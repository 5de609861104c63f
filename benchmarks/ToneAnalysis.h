// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <cstddef>
#include <vector>

namespace tonvale::benchmarks {

constexpr double deviceRate = 48000;

/// One channel at the device's rate. Places are frames.
using Samples = std::vector<float>;

/// -180 for a ratio of nothing.
[[nodiscard]] double decibels(double ratio);

/// The first frame from `from` on that is not silent, or the end.
[[nodiscard]] std::size_t firstSound(const Samples& sound, double from);
/// The frame behind the last one that is not silent.
[[nodiscard]] std::size_t endOfSound(const Samples& sound);

/// The frame of the largest sample among `count` from `from` on.
[[nodiscard]] std::size_t strongest(const Samples& sound, double from, double count);

/// Level of a tone around `centre`, seen through a smooth window of `size` frames.
[[nodiscard]] double levelAt(const Samples& sound, double centre, std::size_t size,
                             double frequency);

/// The largest component above 3 kHz in any short stretch, in decibels of the
/// tone's level.
[[nodiscard]] double clickIn(const Samples& sound, double level, double from, double to);

/// The lowest power in any 20 ms, in decibels of the tone's.
[[nodiscard]] double dipIn(const Samples& sound, double level, double from, double to);

}  // namespace tonvale::benchmarks
