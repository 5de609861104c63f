// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Tonvale/DetectedSongDetails.h"

#include <QString>

#include <algorithm>
#include <cmath>

namespace tonvale {

namespace {

/// Halves go away from zero. Goes through no integer, so that any finite number has digits.
std::string wholeNumber(double number)
{
    return QString::number(std::round(number), 'f', 0).toStdString();
}

}  // namespace

std::array<std::string, 2> DetectedSongDetails::displayLines() const
{
    // Both labels have two blanks before the colon.
    return {"Key  : " + std::string(musicKey_.name()) + " - Confidence "
                + formatPercent(keyConfidence_),
            "Tempo  : " + formatBPM()};
}

std::string DetectedSongDetails::formatPercent(double fraction)
{
    return (fraction <= 0 ? "0" : wholeNumber(std::min(fraction, 1.0) * 100)) + "%";
}

std::string DetectedSongDetails::formatBPM() const
{
    // Tested before rounding: any tempo above 0 is one, even where it shows as 0.
    if (!bpm_ || !std::isfinite(*bpm_) || *bpm_ <= 0) {
        return "Unavailable";
    }
    return wholeNumber(*bpm_) + " BPM - Unverified";
}

}  // namespace tonvale
