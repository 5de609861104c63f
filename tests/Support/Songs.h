// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Platform/Audio/AudioFormat.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace tonvale::test {

/// Samples by channel, all of one length.
using Channels = std::vector<std::vector<float>>;

/// One steady tone for each channel, of `frequencies[channel]` hertz at half level.
[[nodiscard]] Channels tones(const std::vector<double>& frequencies, double sampleRate,
                             std::size_t frames);

/// Writes 16-bit samples; the container follows the extension.
void writeSong(const std::filesystem::path& url, double sampleRate, const Channels& channels);

struct Song {
    AudioFormat format;
    Channels channels;
};

/// Decodes the whole file.
[[nodiscard]] Song readSong(const std::filesystem::path& url);

/// The frequency of a steady tone in hertz, from the zero crossings of its middle half.
[[nodiscard]] double frequencyOf(const std::vector<float>& samples, double sampleRate);

/// How far `measured` lies above `expected`, in cents.
[[nodiscard]] double centsBetween(double expected, double measured);

}  // namespace tonvale::test
