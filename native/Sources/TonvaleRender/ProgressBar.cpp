// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "TonvaleRender/ProgressBar.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

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
    if (lastDrawn_) {
        output_ << wipeLine << std::flush;
    }
}

void ProgressBar::update(std::int64_t done, std::int64_t total, Clock::time_point now)
{
    if (lastDrawn_ && now - *lastDrawn_ < redrawInterval) {
        return;
    }
    lastDrawn_ = now;
    output_ << wipeLine << line(done, total, now - start_) << std::flush;
}

std::string ProgressBar::line(std::int64_t done, std::int64_t total,
                              std::chrono::duration<double> elapsed)
{
    const double share = total > 0 ? static_cast<double>(done) / static_cast<double>(total) : 1.0;
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
