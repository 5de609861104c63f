// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "Mutants/Mutant.h"
#include "Mutants/Trial.h"

#include <map>
#include <ostream>
#include <string>
#include <utility>

namespace tonvale::test {

/// Counts what became of the mutants.
class Tally {
public:
    /// @param name  tells this trial from all others
    void add(const std::string& name, const Mutant& mutant, const TrialResult& result);

    /// A line for each format and way, then what the errors said, then the extremes.
    void print(std::ostream& stream) const;

private:
    struct Extreme {
        double value = 0;
        std::string name;
        void offer(double other, const std::string& otherName);
    };
    using Counts = std::map<Outcome, int>;

    static void printCounts(std::ostream& stream, const Counts& counts);

    std::map<std::pair<std::string, Way>, Counts> counts_;
    Counts all_;
    std::map<std::string, int> words_;
    Extreme processorSeconds_;
    Extreme seconds_;
    Extreme megabytes_;
};

}  // namespace tonvale::test
