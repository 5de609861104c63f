// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/ProgressBar.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace tonvale {

namespace {

constexpr std::size_t barWidth = 30;
constexpr auto redrawInterval = std::chrono::milliseconds(100);
constexpr auto wipeLine = "\r\x1b[K";

std::string minutesAndSeconds(double seconds)
{
    const auto whole = static_cast<std::int64_t>(std::ceil(seconds));
    const std::string padding = whole % 60 < 10 ? "0" : "";
    return std::to_string(whole / 60) + ":" + padding + std::to_string(whole % 60);
}

}  // namespace

ProgressBar::ProgressBar(std::ostream& output, Clock::time_point start)
    : output_(output)
    , start_(start)
{
}

ProgressBar::~ProgressBar()
{
    wipe();
}

void ProgressBar::wipe()
{
    if (lastDrawn_) {
        output_ << wipeLine << std::flush;
    }
    lastDrawn_.reset();
}

void ProgressBar::update(double share, const std::string& note, Clock::time_point now)
{
    if (lastDrawn_ && now - *lastDrawn_ < redrawInterval) {
        return;
    }
    lastDrawn_ = now;
    output_ << wipeLine << line(share, now - start_) << note << std::flush;
}

std::string ProgressBar::line(double share, std::chrono::duration<double> elapsed)
{
    const auto filled = static_cast<std::size_t>(share * barWidth);
    const std::string percent = std::to_string(static_cast<int>(share * 100));
    std::string text = "[" + std::string(filled, '#') + std::string(barWidth - filled, '-') + "] "
                       + std::string(3 - std::min<std::size_t>(percent.size(), 3), ' ') + percent
                       + " %";
    if (share > 0) {
        text += "  " + minutesAndSeconds(elapsed.count() * (1 - share) / share) + " left";
    }
    return text;
}

}  // namespace tonvale
