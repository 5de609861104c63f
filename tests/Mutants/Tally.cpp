// SPDX-FileCopyrightText: 2026 The Tonvale Authors
//
// SPDX-License-Identifier: GPL-3.0-or-later

#include "Mutants/Tally.h"

#include <array>
#include <cstddef>
#include <iomanip>

namespace tonvale::test {

namespace {

constexpr std::array<std::pair<Outcome, const char*>, 5> columns = {
    {{Outcome::refused, "refused"},
     {Outcome::empty, "empty"},
     {Outcome::failed, "failed"},
     {Outcome::rendered, "rendered"},
     {Outcome::unfinished, "UNFINISHED"}}};
constexpr int columnWidth = 11;

}  // namespace

void Tally::Extreme::offer(double other, const std::string& otherName)
{
    if (other > value) {
        value = other;
        name = otherName;
    }
}

void Tally::add(const std::string& name, const Mutant& mutant, const TrialResult& result)
{
    ++counts_[{mutant.source->format, mutant.way}][result.ending.outcome];
    ++all_[result.ending.outcome];
    if (!result.ending.words.empty()) {
        ++words_[result.ending.words];
    }
    processorSeconds_.offer(result.processorSeconds, name);
    seconds_.offer(result.seconds, name);
    megabytes_.offer(result.megabytes, name);
}

void Tally::printCounts(std::ostream& stream, const Counts& counts)
{
    for (const auto& [outcome, name] : columns) {
        const auto found = counts.find(outcome);
        stream << std::setw(columnWidth) << (found == counts.end() ? 0 : found->second);
    }
    stream << '\n';
}

void Tally::print(std::ostream& stream) const
{
    stream << std::left << std::setw(16) << "trials" << std::right;
    for (const auto& [outcome, name] : columns) {
        stream << std::setw(columnWidth) << name;
    }
    stream << '\n';
    for (const auto& [row, counts] : counts_) {
        const char* const way = wayNames[static_cast<std::size_t>(row.second)];
        stream << std::left << std::setw(6) << row.first << std::setw(10) << way << std::right;
        printCounts(stream, counts);
    }
    stream << std::left << std::setw(16) << "all" << std::right;
    printCounts(stream, all_);
    for (const auto& [words, count] : words_) {
        stream << std::setw(6) << count << "  " << words << '\n';
    }
    stream << std::fixed << std::setprecision(2) << "most processor time "
           << processorSeconds_.value << " s (" << processorSeconds_.name << ")\nlongest "
           << seconds_.value << " s (" << seconds_.name << ")\nmost memory " << std::setprecision(0)
           << megabytes_.value << " MiB (" << megabytes_.name << ")\n";
}

}  // namespace tonvale::test
