// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <chrono>
#include <optional>
#include <ostream>
#include <string>

namespace tonvale {

/// One line that tells how far the work is and how long it will take, drawn over itself.
class ProgressBar {
public:
    using Clock = std::chrono::steady_clock;

    /// @param output  a terminal
    explicit ProgressBar(std::ostream& output, Clock::time_point start = Clock::now());
    /// Wipes the line.
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Redraws at most ten times a second.
    /// @param share  what is done, 0 ... 1    @param note  to stand behind the bar; may be empty
    void update(double share, const std::string& note = "", Clock::time_point now = Clock::now());

    /// Wipes the line, so that something else can be written; the next update draws it again.
    void wipe();

    /// "[######------------------------]  20 %  0:12 left"
    [[nodiscard]] static std::string line(double share, std::chrono::duration<double> elapsed);

private:
    std::ostream& output_;
    Clock::time_point start_;
    std::optional<Clock::time_point> lastDrawn_;
};

}  // namespace tonvale
