// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Tonvale/Keys/MusicKey.h"

#include <array>
#include <optional>
#include <string>

namespace tonvale {

/// What a detection found out about a song.
/// @thread ANY; a plain value, fixed at construction
class DetectedSongDetails {
public:
    DetectedSongDetails(MusicKey musicKey, double keyConfidence, std::optional<double> bpm) noexcept
        : musicKey_(musicKey)
        , keyConfidence_(keyConfidence)
        , bpm_(bpm)
    {
    }

    [[nodiscard]] MusicKey musicKey() const noexcept { return musicKey_; }
    /// A fraction, 0 ... 1 is meaningful; as the detector reported it, neither clamped nor rounded.
    [[nodiscard]] double keyConfidence() const noexcept { return keyConfidence_; }
    /// Beats per minute as reported, unrounded; none where the detector found no tempo.
    [[nodiscard]] std::optional<double> bpm() const noexcept { return bpm_; }

    /// The key's line, then the tempo's.
    [[nodiscard]] std::array<std::string, 2> displayLines() const;

private:
    [[nodiscard]] static std::string formatPercent(double fraction);
    [[nodiscard]] std::string formatBPM() const;

    MusicKey musicKey_;
    double keyConfidence_;
    std::optional<double> bpm_;
};

}  // namespace tonvale
