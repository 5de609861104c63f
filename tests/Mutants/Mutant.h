// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace tonvale::test {

/// How a file is damaged.
enum class Way {
    flip,      ///< some bits are the other way round
    truncate,  ///< the end is missing
    header,    ///< numbers near the start, or the end, are others, extreme ones for the most part
    insert,    ///< bytes that do not belong there
    zero,      ///< a stretch is all zeros
};
inline constexpr std::array<const char*, 5> wayNames = {"flip", "truncate", "header", "insert",
                                                        "zero"};

using Bytes = std::vector<std::uint8_t>;

/// @param song  not empty
[[nodiscard]] Bytes damaged(Bytes song, Way way, std::mt19937& random);

/// A good file of less than a second.
struct MutantSource {
    std::string format;    ///< "MP3", "M4A", ...
    std::string fileName;  ///< with the ending that goes with it
    Bytes bytes;
};

/// Files of every format, encoded anew; an empty one where the encoder failed.
[[nodiscard]] std::vector<MutantSource> makeMutantSources();

struct Mutant {
    const MutantSource* source;
    Way way;
    Bytes bytes;
};

/// The same mutant for the same numbers. As `index` counts up, sources and ways take turns.
[[nodiscard]] Mutant makeMutant(const std::vector<MutantSource>& sources, std::uint32_t seed,
                                std::uint32_t index);

}  // namespace tonvale::test
