// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "TonvaleRender/ProgressBar.h"

#include <cstddef>
#include <map>
#include <mutex>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace tonvale {

/// Tells the user what becomes of the results of a command, whichever thread they come from: what
/// was reached on standard output, failures on standard error, and there, on a terminal, one bar
/// below all of it for what is still to come.
/// @thread ANY
class RenderReport {
public:
    struct Style {
        std::size_t results = 1;        ///< how many are to come
        std::string success = "saved";  ///< what becomes of those that do not fail
        bool tellsSuccess = true;       ///< otherwise failures only
        bool keepsOrder = false;        ///< tells of each result after all those before it
        bool drawsBar = false;          ///< `errors` is a terminal
    };

    RenderReport(std::ostream& output, std::ostream& errors, Style style);

    /// @param lines  whole ones that are no result
    void say(const std::string& lines);
    /// @param result  0 ... results - 1
    /// @param share   what is done of it, 0 ... 1
    void progress(std::size_t result, double share);
    /// @param lines  whole ones that tell of it
    void succeeded(std::size_t result, const std::string& lines);
    /// @param results   all that fail of the same
    /// @param sentence  for the user
    void failed(const std::vector<std::size_t>& results, const std::string& sentence);

    /// Takes the bar away.
    void clear();
    /// "11 saved, 1 failed", where there were several.
    void sumUp();
    [[nodiscard]] bool hasFailures() const;

private:
    void print(std::ostream& stream, const std::string& lines);
    void tell(std::size_t result, const std::string& lines);
    void setShare(std::size_t result, double share);
    void draw();

    mutable std::mutex mutex_;  // for all below
    std::ostream& output_;
    std::ostream& errors_;
    Style style_;
    std::optional<ProgressBar> bar_;
    std::vector<double> shares_;  // of each result
    double totalShare_ = 0;
    std::size_t finished_ = 0;
    std::size_t failures_ = 0;
    std::map<std::size_t, std::string> waiting_;  // lines of results whose turn has not come
    std::size_t turn_ = 0;
};

}  // namespace tonvale
